// The script runs on a timer of the main loop.
#include "conformance/port_test.h"

#include <Ecore.h>
#include <unistd.h>

namespace orvex::conformance {
namespace {

constexpr double kLookEverySeconds = 0.001;
constexpr useconds_t kLookEveryUs = 1000;

}  // namespace

ScriptedApplication& ScriptedApplication::Do(std::function<void()> action) {
  m_Steps.push_back({"an action", [action = std::move(action)] {
                       action();
                       return true;
                     }});
  return *this;
}

ScriptedApplication& ScriptedApplication::Until(const std::string& what, std::function<bool()> condition) {
  m_Steps.push_back({what, std::move(condition)});
  return *this;
}

ScriptedApplication& ScriptedApplication::After(double ms) {
  m_Steps.push_back({"time to pass", [this, ms] { return m_Port.NowMs() >= m_StepBeganMs + ms; }});
  return *this;
}

void ScriptedApplication::Run() {
  EXPECT_EQ(AppMain(0, nullptr, this), 0);
}

bool ScriptedApplication::t_OnCreate() {
  calls.emplace_back("create");
  const auto onTimer = [](void* application) -> Eina_Bool {
    static_cast<ScriptedApplication*>(application)->PlayOn();
    return ECORE_CALLBACK_RENEW;
  };
  m_Timer = ecore_timer_add(kLookEverySeconds, onTimer, this);
  m_StepBeganMs = m_Port.NowMs();
  onCreate();
  return createAnswer;
}

// Plays steps until one is not done yet.
void ScriptedApplication::PlayOn() {
  while (m_Next < m_Steps.size() && m_Steps[m_Next].isDone() && !testing::Test::HasFatalFailure()) {
    ++m_Next;
    m_StepBeganMs = m_Port.NowMs();
  }
  const bool isOver = m_Next == m_Steps.size() || testing::Test::HasFatalFailure();
  const bool hangs = !isOver && m_Port.NowMs() > m_StepBeganMs + kLimitMs;
  if (hangs) {
    ADD_FAILURE() << "waited " << kLimitMs / 1000.0 << " s for " << m_Steps[m_Next].what;
  }
  if (isOver || hangs) {
    ui_app_exit();
  }
}

bool ScriptedApplication::t_OnEvent(FwEvent* event) {
  calls.push_back("event " + std::to_string(event->GetType()));
  onEvent(event->GetType());
  return true;
}

void ScriptedApplication::t_OnDestroy() {
  calls.emplace_back("destroy");
  if (m_Timer != nullptr) {
    ecore_timer_del(static_cast<Ecore_Timer*>(m_Timer));
    m_Timer = nullptr;
  }
  onDestroy();
}

bool ScriptedApplication::IfMessageReceived(const std::string& /*sender*/, const FwMessage& received,
                                            FwMessage& reply) {
  calls.push_back("message " + received.type);
  onMessage(received, reply);
  return true;
}

bool PortTest::WaitUntil(const std::function<bool()>& condition) {
  const double deadlineMs = Port().NowMs() + kLimitMs;
  while (!condition()) {
    if (Port().NowMs() > deadlineMs) {
      return false;
    }
    usleep(kLookEveryUs);
  }
  return true;
}

Thread::Thread(std::function<void()> body) : m_Body(std::move(body)) {
  const auto run = [](void* thread) -> void* {
    static_cast<Thread*>(thread)->m_Body();
    return nullptr;
  };
  m_IsJoinable = pthread_create(&m_Thread, nullptr, run, this) == 0;
  EXPECT_TRUE(m_IsJoinable) << "no thread can be made";
}

void Thread::Join() {
  if (m_IsJoinable) {
    pthread_join(m_Thread, nullptr);
    m_IsJoinable = false;
  }
}

}  // namespace orvex::conformance
