// Periodic alarms: an Ecore timer each.
#include <Ecore.h>

#include "orvex/platform/application.h"
#include "virtual/main_loop.h"

namespace {

// Shared by the alarm and by a tick that runs: the callback may destroy the alarm, or start it anew.
struct AlarmState {
  Ecore_Timer* timer = nullptr;
  unsigned mainLoop = 0;  // where the timer was made; it is void in any other
  int ticksLeft = 0;
  FwAlarm::Callback callback = nullptr;
  void* userData = nullptr;

  bool IsActive() const { return timer != nullptr && mainLoop == orvex::virtual_tv::CurrentMainLoop(); }
};

}  // namespace

struct FwAlarm::Port {
  std::shared_ptr<AlarmState> state = std::make_shared<AlarmState>();

  static Eina_Bool OnTick(void* port) {
    const std::shared_ptr<AlarmState> state = static_cast<Port*>(port)->state;
    Ecore_Timer* const timer = state->timer;
    if (state->ticksLeft != kRepeatForever && --state->ticksLeft == 0) {
      state->timer = nullptr;
    }
    const bool isLast = state->timer == nullptr;
    if (state->callback != nullptr && !orvex::virtual_tv::IsMainLoopEnding()) {
      state->callback(state->userData);
    }
    // A timer that the callback has ended is Ecore's to forget.
    return !isLast && state->timer == timer ? ECORE_CALLBACK_RENEW : ECORE_CALLBACK_CANCEL;
  }
};

FwAlarm::FwAlarm() : m_Port(std::make_unique<Port>()) {}

FwAlarm::~FwAlarm() {
  if (IsActive()) {
    Destroy();
  }
}

bool FwAlarm::Create(FwEventIO* /*eventInput*/, std::uint32_t periodMs, int repeatCount) {
  AlarmState& state = *m_Port->state;
  const bool isValid = periodMs > 0 && (repeatCount > 0 || repeatCount == kRepeatForever);
  if (!isValid || IsActive() || orvex::virtual_tv::CurrentMainLoop() == 0) {
    return false;
  }
  constexpr double kMsPerSecond = 1000.0;
  state.timer = ecore_timer_add(periodMs / kMsPerSecond, &Port::OnTick, m_Port.get());
  state.mainLoop = orvex::virtual_tv::CurrentMainLoop();
  state.ticksLeft = repeatCount;
  return state.timer != nullptr;
}

void FwAlarm::SetAlarmCallback(Callback callback, void* userData) {
  m_Port->state->callback = callback;
  m_Port->state->userData = userData;
}

void FwAlarm::Destroy() {
  AlarmState& state = *m_Port->state;
  if (state.IsActive()) {
    ecore_timer_del(state.timer);
  }
  state.timer = nullptr;
}

bool FwAlarm::IsActive() const {
  return m_Port->state->IsActive();
}
