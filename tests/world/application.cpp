// The application framework in virtual time.
#include "orvex/platform/application.h"

#include <cstdlib>

#include "world/world.h"

using orvex::world::Lane;
using orvex::world::Scheduler;
using orvex::world::World;

bool SendEvent(const FwEvent& event) {
  World& world = World::Current();
  const bool isRefused = world.answers.Take("SendEvent").has_value();
  world.Call("SendEvent(" + std::to_string(event.GetType()) + (event.GetReceiver() == nullptr ? ", nobody)" : ")"));
  return !isRefused && world.SendEventFromService(event);
}

bool FwEventIO::t_OnEvent(FwEvent* /*event*/) {
  return World::Current().consumesEvents;
}

FwEflApplication::FwEflApplication(const char* identifier) : m_Identifier(identifier) {
  World::Current().Call("FwEflApplication(\"" + m_Identifier + "\")");
}

FwEflApplication::~FwEflApplication() = default;

bool FwEflApplication::IfMessageReceived(const std::string& /*sender*/, const FwMessage& /*received*/,
                                         FwMessage& /*reply*/) {
  return false;
}

struct FwAlarm::Port {
  Callback callback = nullptr;
  void* userData = nullptr;
  std::chrono::milliseconds period{0};
  int repeatsLeft = 0;
  bool active = false;
  Scheduler::Id next;

  void Arm() {
    Scheduler& scheduler = World::Current().scheduler;
    next = scheduler.At(scheduler.Now() + period, Lane::kMainLoop, [this] { Ring(); });
  }
  void Ring() {
    active = repeatsLeft == kRepeatForever || --repeatsLeft > 0;
    if (active) {
      Arm();
    }
    if (callback != nullptr && !World::Current().IsEnding()) {
      const bool answer = callback(userData);
      World::Current().Call(std::string("FwAlarm's callback = ") + (answer ? "true" : "false"));
    }
  }
};

FwAlarm::FwAlarm() : m_Port(std::make_unique<Port>()) {
  ++World::Current().openAlarms;
}

FwAlarm::~FwAlarm() {
  World::Current().Call("~FwAlarm()");
  if (m_Port->active) {
    World::Current().scheduler.Cancel(m_Port->next);
  }
  --World::Current().openAlarms;
}

bool FwAlarm::Create(FwEventIO* eventInput, std::uint32_t periodMs, int repeatCount) {
  World& world = World::Current();
  const bool fails = world.answers.Take("FwAlarm::Create").has_value();
  world.Call("FwAlarm::Create(" + std::to_string(periodMs) + ", " +
             (repeatCount == kRepeatForever ? "forever" : std::to_string(repeatCount)) + ")");
  world.alarmInput = eventInput;
  if (fails || m_Port->active) {
    return false;
  }
  m_Port->period = std::chrono::milliseconds(periodMs);
  m_Port->repeatsLeft = repeatCount;
  m_Port->active = true;
  m_Port->Arm();
  return true;
}

void FwAlarm::SetAlarmCallback(Callback callback, void* userData) {
  World::Current().Call("FwAlarm::SetAlarmCallback()");
  World::Current().alarmUserData = userData;
  m_Port->callback = callback;
  m_Port->userData = userData;
}

void FwAlarm::Destroy() {
  World::Current().Call("FwAlarm::Destroy()");
  World::Current().scheduler.Cancel(m_Port->next);
  m_Port->active = false;
}

bool FwAlarm::IsActive() const {
  return m_Port->active;
}

int AppMain(int /*argc*/, char** /*argv*/, FwEflApplication* application) {
  World::Current().Create(*application);
  return World::Current().RunToEnd() ? EXIT_SUCCESS : EXIT_FAILURE;
}

void ui_app_exit() {
  World::Current().Call("ui_app_exit()");
  World::Current().RequestEnd();
}
