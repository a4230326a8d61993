// What the virtual television adds to the pieces that it is built from: places, the form of its log, and faults.
#include <json/json.h>
#include <stdlib.h>

#include <functional>
#include <regex>

#include "orvex/platform/event_log.h"
#include "orvex/platform/settings.h"
#include "orvex/platform/system_log.h"
#include "orvex/platform/watchdog.h"
#include "support/manager_socket.h"
#include "unit/linux/loop_application.h"
#include "unit/linux/setting_texts.h"
#include "unit/virtual/television.h"

namespace orvex::virtual_tv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* kFlag = "db/device-detector-service/optical_change_flag";
constexpr const char* kConsent = "db/menu/tessar/homedatacontrol/defaultdisclaimeragree";

std::string FileOf(const std::string& key) {
  return "settings/" + key;
}

class TelevisionLog : public TelevisionTest {};

TEST_F(TelevisionLog, IsTheRecordRawOnStderrAndOneLineWithItsTimeInAFile) {
  const std::string record = "file.cpp: run(7) > \033[32mhello\033[0m\n";
  testing::internal::CaptureStderr();
  const int result = system_log_print(LogBuffer::kMain, LogPriority::kInfo, "Orvex", "%s", record.c_str());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), record);
  EXPECT_EQ(result, static_cast<int>(record.size()));
  const std::string line = Content("service.log");
  EXPECT_TRUE(std::regex_match(line, std::regex("\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{6}Z main I "
                                                "Orvex: file\\.cpp: run\\(7\\) > \x1b\\[32mhello\x1b\\[0m\n")))
      << line;
}

class TelevisionSettings : public TelevisionTest {};

TEST_F(TelevisionSettings, ReadAnIntegerOrTellWhyNot) {
  port::ExpectIntegersOrReasons(kFlag, [this](const std::string& text) { Echo(FileOf(kFlag), text); });
}

TEST_F(TelevisionSettings, TellAMissingKeyFromAnUnreadableStore) {
  port::ExpectMissingOrUnreadable(kFlag, Folder() / FileOf(kFlag));
}

TEST_F(TelevisionSettings, AnswerAsInjected) {
  const SettingsChangedCallback callback = [](const SettingsNode*, void*) {};
  SetFaults(R"({"settings.get": [-3], "settings.subscribe": [-3], "settings.unsubscribe": [-1]})");
  int value = 77;
  EXPECT_EQ(settings_get_int(kConsent, &value), kSettingsUnreadable);
  EXPECT_EQ(value, 77);
  EXPECT_EQ(settings_get_int(kConsent, &value), kSettingsDone);
  EXPECT_EQ(settings_subscribe(kFlag, callback, nullptr), kSettingsUnreadable);
  EXPECT_EQ(settings_subscribe(kFlag, callback, nullptr), kSettingsDone);
  EXPECT_EQ(settings_unsubscribe(kFlag, callback), kSettingsNotSubscribed);
  EXPECT_EQ(settings_unsubscribe(kFlag, callback), kSettingsDone);
}

class TelevisionEventLog : public TelevisionTest {
protected:
  static int Add(const std::string& value) {
    return event_log_add_sync(event_log_get_instance(), "21_remocon", "ORVEXSET", "EV012", value);
  }
};

TEST_F(TelevisionEventLog, KeepsNothingOfARefusedRecord) {
  SetFaults(R"({"event_log.add": [0, -1]})");
  EXPECT_EQ(Add("refused"), kEventLogRefused);
  EXPECT_EQ(Add("unreachable"), kEventLogUnreachable);
  EXPECT_EQ(Add("accepted"), kEventLogAccepted);
  std::istringstream lines(Content("events.jsonl"));
  Json::Value record;
  lines >> record;
  EXPECT_EQ(record["value"], "accepted");
}

TEST_F(TelevisionEventLog, HasNoInstanceWhenAbsent) {
  SetFaults(R"({"event_log": "absent"})");
  EXPECT_EQ(event_log_get_instance(), nullptr);
  EXPECT_LT(Add("x"), 0);
}

class TelevisionMainLoop : public TelevisionTest {
protected:
  // Runs a main loop that ends when `work` is done in it.
  void RunWith(const std::function<void()>& work) {
    m_Application.onCreate = [work] {
      work();
      ui_app_exit();
    };
    m_Application.Run();
  }

  port::LoopApplication m_Application;
};

TEST_F(TelevisionMainLoop, TakesTheWatchdogsSocketOutOfTheEnvironment) {
  const std::string name = (Folder() / "notify").string();
  const test::ManagerSocket manager(name);
  setenv("NOTIFY_SOCKET", name.c_str(), 1);
  RunWith([] {
    EXPECT_EQ(getenv("NOTIFY_SOCKET"), nullptr);
    EXPECT_EQ(watchdog_register(120), kWatchdogDone);
  });
  EXPECT_THAT(manager.Received(), ElementsAre("READY=1\nWATCHDOG_USEC=120000000"));
}

TEST_F(TelevisionMainLoop, HasAWatchdogThatAnswersAsInjectedAndIsSentNothingThen) {
  const std::string name = (Folder() / "notify").string();
  const test::ManagerSocket manager(name);
  SetFaults(R"({"watchdog.register": [-1], "watchdog.notify": [null, -1]})");
  setenv("NOTIFY_SOCKET", name.c_str(), 1);
  RunWith([] {
    EXPECT_EQ(watchdog_register(120), kWatchdogFailed);
    EXPECT_EQ(watchdog_register(120), kWatchdogDone);
    EXPECT_EQ(watchdog_notify(), kWatchdogDone);
    EXPECT_EQ(watchdog_notify(), kWatchdogFailed);
  });
  EXPECT_EQ(manager.Received().size(), 2U);
}

TEST_F(TelevisionMainLoop, CannotRunWithoutAnApplication) {
  testing::internal::CaptureStderr();
  EXPECT_NE(AppMain(0, nullptr, nullptr), 0);
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("orvex-host: the main loop cannot run: expected an application"));
}

}  // namespace
}  // namespace orvex::virtual_tv
