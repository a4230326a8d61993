// Periodic alarms: an Ecore timer each.
#include "linux/alarm.h"

#include <Ecore.h>

#include <set>

#include "linux/main_loop.h"
#include "linux/no_destroy.h"
#include "orvex/platform/application.h"

namespace {

// Shared by the alarm and by a tick that runs: the callback may destroy the alarm, or start it anew.
struct AlarmState {
  Ecore_Timer* timer = nullptr;
  int ticksLeft = 0;
  FwAlarm::Callback callback = nullptr;
  void* userData = nullptr;
};

// Those that have a timer.
std::set<AlarmState*>& ActiveAlarms() {
  static const orvex::port::NoDestroy<std::set<AlarmState*>> alarms;
  return *alarms;
}

// The timer is Ecore's to forget.
void Deactivate(AlarmState& alarm) {
  alarm.timer = nullptr;
  ActiveAlarms().erase(&alarm);
}

void End(AlarmState& alarm) {
  ecore_timer_del(alarm.timer);
  Deactivate(alarm);
}

}  // namespace

struct FwAlarm::Port {
  std::shared_ptr<AlarmState> state = std::make_shared<AlarmState>();

  static Eina_Bool OnTick(void* port) {
    const std::shared_ptr<AlarmState> state = static_cast<Port*>(port)->state;
    Ecore_Timer* const timer = state->timer;
    if (state->ticksLeft != kRepeatForever && --state->ticksLeft == 0) {
      Deactivate(*state);
    }
    const bool isLast = state->timer == nullptr;
    if (state->callback != nullptr && !orvex::port::IsMainLoopEnding()) {
      state->callback(state->userData);
    }
    // A timer that the callback has ended is Ecore's to forget.
    return !isLast && state->timer == timer ? ECORE_CALLBACK_RENEW : ECORE_CALLBACK_CANCEL;
  }
};

FwAlarm::FwAlarm() : m_Port(std::make_unique<Port>()) {}

FwAlarm::~FwAlarm() {
  Destroy();
}

bool FwAlarm::Create(FwEventIO* /*eventInput*/, std::uint32_t periodMs, int repeatCount) {
  AlarmState& state = *m_Port->state;
  const bool isValid = periodMs > 0 && (repeatCount > 0 || repeatCount == kRepeatForever);
  if (!isValid || IsActive() || orvex::port::CurrentMainLoop() == 0) {
    return false;
  }
  constexpr double kMsPerSecond = 1000.0;
  state.timer = ecore_timer_add(periodMs / kMsPerSecond, &Port::OnTick, m_Port.get());
  state.ticksLeft = repeatCount;
  if (IsActive()) {
    ActiveAlarms().insert(&state);
  }
  return IsActive();
}

void FwAlarm::SetAlarmCallback(Callback callback, void* userData) {
  m_Port->state->callback = callback;
  m_Port->state->userData = userData;
}

void FwAlarm::Destroy() {
  if (IsActive()) {
    End(*m_Port->state);
  }
}

bool FwAlarm::IsActive() const {
  return m_Port->state->timer != nullptr;
}

void orvex::port::EndAllAlarms() {
  while (!ActiveAlarms().empty()) {
    End(**ActiveAlarms().begin());
  }
}
