// The watchdog: what is sent to a service manager's socket, and that nobody else sends.
#include "orvex/platform/watchdog.h"
#include "support/manager_socket.h"
#include "unit/linux/loop_application.h"
#include "unit/linux/port_test.h"

namespace orvex::port {
namespace {

using test::ManagerSocket;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Watchdog : public PortTest {
protected:
  ~Watchdog() override { unsetenv("NOTIFY_SOCKET"); }

  // Runs a main loop in which `work` is done, with the environment that a service manager gives.
  void RunUnder(const std::string& socket, const std::function<void()>& work) {
    setenv("NOTIFY_SOCKET", socket.c_str(), 1);
    setenv("WATCHDOG_USEC", "1000000", 1);
    m_Application.onCreate = [work] {
      work();
      ui_app_exit();
    };
    m_Application.Run();
  }

  LoopApplication m_Application;
};

TEST_F(Watchdog, RefusesANotificationWithoutRegistration) {
  RunUnder("", [] {
    EXPECT_EQ(watchdog_notify(), kWatchdogFailed);
    EXPECT_EQ(watchdog_register(1), kWatchdogDone);
  });
  RunUnder("", [] { EXPECT_EQ(watchdog_notify(), kWatchdogFailed) << "the registration of another main loop"; });
}

TEST_F(Watchdog, RegistersAndNotifiesOverAPath) {
  const std::string name = (Folder() / "notify").string();
  const ManagerSocket manager(name);
  RunUnder(name, [] {
    EXPECT_EQ(watchdog_register(120), kWatchdogDone);
    EXPECT_EQ(watchdog_notify(), kWatchdogDone);
    EXPECT_EQ(watchdog_notify(), kWatchdogDone);
  });
  EXPECT_THAT(manager.Received(), ElementsAre("READY=1\nWATCHDOG_USEC=120000000", "WATCHDOG=1", "WATCHDOG=1"));
}

TEST_F(Watchdog, RegistersOverAnAbstractName) {
  const std::string name = "@orvex-watchdog-test-" + std::to_string(getpid());
  const ManagerSocket manager(name);
  RunUnder(name, [] { EXPECT_EQ(watchdog_register(1), kWatchdogDone); });
  EXPECT_THAT(manager.Received(), ElementsAre("READY=1\nWATCHDOG_USEC=1000000"));
}

TEST_F(Watchdog, IsTheOnlyOneWhoSends) {
  const std::string name = (Folder() / "notify").string();
  const ManagerSocket manager(name);
  FwAlarm alarm;
  setenv("NOTIFY_SOCKET", name.c_str(), 1);
  setenv("WATCHDOG_USEC", "1000000", 1);
  m_Application.onCreate = [&] {
    EXPECT_EQ(getenv("NOTIFY_SOCKET"), nullptr);
    EXPECT_EQ(getenv("WATCHDOG_USEC"), nullptr);
    alarm.SetAlarmCallback(
        [](void*) {
          ui_app_exit();
          return true;
        },
        nullptr);
    // Longer than half the period that the environment asks for, which is when a library would notify.
    EXPECT_TRUE(alarm.Create(nullptr, 700, 1));
  };
  m_Application.Run();
  EXPECT_THAT(manager.Received(), IsEmpty());
}

TEST_F(Watchdog, IsSatisfiedWithoutAServiceManager) {
  RunUnder("", [] {
    EXPECT_EQ(watchdog_register(120), kWatchdogDone);
    EXPECT_EQ(watchdog_notify(), kWatchdogDone);
  });
}

TEST_F(Watchdog, FailsOnASocketThatCannotBeUsed) {
  const struct {
    std::string socket;
    const char* problem;
  } rows[] = {{"relative/path", "expected an absolute path or @name"},
              {"/", "expected an absolute path or @name"},
              {"/" + std::string(200, 'x'), "of at most 107 bytes"},
              {(Folder() / "nobody").string(), "No such file or directory"}};
  for (const auto& row : rows) {
    testing::internal::CaptureStderr();
    RunUnder(row.socket, [] {
      EXPECT_EQ(watchdog_register(120), kWatchdogFailed);
      EXPECT_EQ(watchdog_notify(), kWatchdogFailed);
    });
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_THAT(told, HasSubstr("NOTIFY_SOCKET: \"" + row.socket + "\": "));
    EXPECT_THAT(told, HasSubstr(row.problem));
  }
}

TEST_F(Watchdog, RefusesATimeoutThatIsNone) {
  RunUnder("", [] {
    testing::internal::CaptureStderr();
    EXPECT_EQ(watchdog_register(0), kWatchdogFailed);
    EXPECT_EQ(watchdog_register(-1), kWatchdogFailed);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("watchdog timeout -1: expected at least 1 s"));
  });
}

}  // namespace
}  // namespace orvex::port
