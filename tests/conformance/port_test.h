// The fixture of the suite: a television, an application on it, and a script that the application plays.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "conformance/port_driver.h"

namespace orvex::conformance {

// After this time of the port a condition is taken never to come true: only a hang takes so long.
constexpr double kLimitMs = 30000.0;

// An application that plays a script on the main loop and then asks for the end. The functions that a test sets run
// when the port calls the application.
class ScriptedApplication : public FwEflApplication {
public:
  explicit ScriptedApplication(PortDriver& port, const char* identifier = "org.velta.conformance")
      : FwEflApplication(identifier), m_Port(port) {}

  // The script: steps that follow each other on the main loop, from the create step on.
  ScriptedApplication& Do(std::function<void()> action);
  ScriptedApplication& Until(const std::string& what, std::function<bool()> condition);
  ScriptedApplication& After(double ms);
  // Somebody else asks for the end.
  ScriptedApplication& UntilTheEnd() {
    return Until("the end of the main loop", [] { return false; });
  }
  // AppMain(), which must answer 0.
  void Run();

  // Sends an event to this application; it must be accepted.
  void Send(std::int32_t type) { EXPECT_TRUE(SendEvent(FwEvent(type, GetEventReceiver()))) << "event " << type; }

  std::function<void()> onCreate = [] {};
  std::function<void(std::int32_t)> onEvent = [](std::int32_t) {};
  std::function<void(const FwMessage&, FwMessage&)> onMessage = [](const FwMessage&, FwMessage&) {};
  std::function<void()> onDestroy = [] {};
  bool createAnswer = true;
  // What the port called, in order: "create", "event 7", "destroy".
  std::vector<std::string> calls;

  bool t_HasWindow() override { return false; }
  bool t_IsSuspendable() override { return false; }
  bool t_RunsInBackground() override { return true; }
  bool t_OnCreate() override;
  bool t_OnEvent(FwEvent* event) override;
  void t_OnDestroy() override;
  bool IfMessageReceived(const std::string& sender, const FwMessage& received, FwMessage& reply) override;

private:
  struct Step {
    std::string what;
    std::function<bool()> isDone;
  };

  void PlayOn();

  PortDriver& m_Port;
  std::vector<Step> m_Steps;
  std::size_t m_Next = 0;
  double m_StepBeganMs = 0.0;
  void* m_Timer = nullptr;
};

class PortTest : public testing::Test {
protected:
  PortDriver& Port() { return *m_Port; }
  // Runs an application whose main loop does `action` once.
  void OnMainLoop(std::function<void()> action) { application.Do(std::move(action)).Run(); }
  // Any thread but the main loop. False: the condition did not come true within the limit.
  bool WaitUntil(const std::function<bool()>& condition);

private:
  std::unique_ptr<PortDriver> m_Port = MakePortDriver();

protected:
  ScriptedApplication application{*m_Port};
};

// A thread made as the service makes its own. To be joined on the main loop's thread; the destructor joins too.
class Thread {
public:
  explicit Thread(std::function<void()> body);
  ~Thread() { Join(); }
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;
  void Join();

private:
  std::function<void()> m_Body;
  pthread_t m_Thread{};
  bool m_IsJoinable = false;
};

}  // namespace orvex::conformance

// First line of a test that needs an ability of the driver.
#define ORVEX_NEEDS(ability)                                                                              \
  if (!Port().Can(orvex::conformance::Ability::ability)) {                                                \
    GTEST_SKIP() << "the port's driver does not declare " << #ability << ": this promise was not tested"; \
  }                                                                                                       \
  static_assert(true, "a semicolon follows")

// First line of a test of what a service answers that the port does not have.
#define ORVEX_NEEDS_NO(ability)                                                                       \
  if (Port().Can(orvex::conformance::Ability::ability)) {                                             \
    GTEST_SKIP() << "the port's driver declares " << #ability << ": the service is not absent there"; \
  }                                                                                                   \
  static_assert(true, "a semicolon follows")
