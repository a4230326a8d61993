// The settings store: reading keys, and one notification per write however the write is made.
#include <unistd.h>

#include <functional>
#include <map>

#include "linux/key_state.h"
#include "linux/small_files.h"
#include "orvex/platform/settings.h"
#include "unit/linux/loop_application.h"
#include "unit/linux/port_test.h"
#include "unit/linux/setting_texts.h"

namespace orvex::port {
namespace {

using testing::HasSubstr;

constexpr const char* kFlag = "db/device-detector-service/optical_change_flag";
constexpr const char* kConsent = "db/menu/tessar/homedatacontrol/defaultdisclaimeragree";
constexpr const char* kLate = "db/quite/new/key";
constexpr const char* kFence = "db/fence";

std::string FileOf(const std::string& key) {
  return "settings/" + key;
}

class Settings : public PortTest {
protected:
  void SetUp() override {
    PortTest::SetUp();
    for (const char* const key : {kFlag, kConsent}) {
      std::filesystem::create_directories((Folder() / FileOf(key)).parent_path());
      Echo(FileOf(key), "0\n");
    }
  }

  // Subscriptions outlast a test that fails.
  ~Settings() override {
    for (const char* const key : {kFlag, kConsent, kLate, kFence}) {
      settings_unsubscribe(key, &OnChanged);
    }
  }

  static void OnChanged(const SettingsNode* node, void* test) {
    auto& self = *static_cast<Settings*>(test);
    ++self.m_Counts[settings_node_name(node)];
    self.m_OnChanged(settings_node_name(node));
  }

  void Subscribe(const char* key) { EXPECT_EQ(settings_subscribe(key, &OnChanged, this), kSettingsDone) << key; }

  // Runs the main loop with `write` in it, until everything that `write` did has been notified: later writes of another
  // key end the loop. Two, because new directories are looked into after the first.
  void RunWith(const std::function<void()>& write) {
    m_Application.onCreate = [this] {
      Subscribe(kFence);
      m_Application.Send(1);
    };
    m_Application.onEvent = [this, write](std::int32_t) {
      write();
      Echo(FileOf(kFence), "1\n");
    };
    const auto inner = m_OnChanged;
    m_OnChanged = [this, inner](const std::string& key) {
      inner(key);
      if (key == kFence && m_Counts[kFence] == 1) {
        Echo(FileOf(kFence), "2\n");
      } else if (key == kFence) {
        ui_app_exit();
      }
    };
    m_Application.Run();
  }

  // How often a subscriber of `key` is notified of what `write` does.
  int CountNotifications(const char* key, const std::function<void()>& write) {
    Subscribe(key);
    RunWith(write);
    return m_Counts[key];
  }

  std::map<std::string, int> m_Counts;
  std::function<void(const std::string&)> m_OnChanged = [](const std::string&) {};
  LoopApplication m_Application;
};

TEST_F(Settings, ReadAnIntegerOrTellWhyNot) {
  ExpectIntegersOrReasons(kFlag, [this](const std::string& text) { Echo(FileOf(kFlag), text); });
}

TEST_F(Settings, ReportAProblemOnceAsLongAsItLasts) {
  const auto reportOf = [](const std::string& key) {
    int value = 0;
    testing::internal::CaptureStderr();
    settings_get_int(key.c_str(), &value);
    return testing::internal::GetCapturedStderr();
  };
  Echo(FileOf(kConsent), "often\n");
  EXPECT_EQ(reportOf(kConsent), "test-port: " + (Folder() / FileOf(kConsent)).string() +
                                    ": \"often\": expected an integer from -2147483648 to 2147483647\n");
  EXPECT_EQ(reportOf(kConsent), "");
  Echo(FileOf(kConsent), "1\n");
  EXPECT_EQ(reportOf(kConsent), "");
  Echo(FileOf(kConsent), "often\n");
  EXPECT_NE(reportOf(kConsent), "");
}

TEST_F(Settings, TellAMissingKeyFromAnUnreadableStore) {
  ExpectMissingOrUnreadable(kFlag, Folder() / FileOf(kFlag));
  int value = 77;
  EXPECT_EQ(settings_get_int(kConsent, &value), kSettingsDone);
}

TEST_F(Settings, TakeASubscriptionOncePerKeyAndCallback) {
  EXPECT_EQ(settings_subscribe(kFlag, &OnChanged, this), kSettingsDone);
  EXPECT_EQ(settings_subscribe(kFlag, &OnChanged, nullptr), kSettingsAlreadySubscribed);
  EXPECT_EQ(settings_subscribe(kConsent, &OnChanged, this), kSettingsDone);
  EXPECT_EQ(settings_unsubscribe(kFlag, &OnChanged), kSettingsDone);
  EXPECT_EQ(settings_unsubscribe(kFlag, &OnChanged), kSettingsNotSubscribed);
  EXPECT_EQ(settings_unsubscribe(nullptr, &OnChanged), kSettingsNotSubscribed);
  EXPECT_EQ(settings_subscribe(kFlag, &OnChanged, this), kSettingsDone);
}

TEST_F(Settings, RefuseASubscriptionThatCannotBeServed) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(settings_subscribe("db/../../x", &OnChanged, this), kSettingsUnreadable);
  EXPECT_EQ(settings_subscribe(nullptr, &OnChanged, this), kSettingsUnreadable);
  EXPECT_EQ(settings_subscribe(kFlag, nullptr, this), kSettingsUnreadable);
  Remove("settings");
  EXPECT_EQ(settings_subscribe(kFlag, &OnChanged, this), kSettingsUnreadable);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("cannot watch " + (Folder() / "settings").string()));
}

TEST_F(Settings, NotifyOncePerWriteByEcho) {
  EXPECT_EQ(CountNotifications(kFlag, [this] { Echo(FileOf(kFlag), "1\n"); }), 1);
}

TEST_F(Settings, NotifyOncePerWriteByRename) {
  EXPECT_EQ(CountNotifications(kFlag, [] { ReplaceFile(Folder() / FileOf(kFlag), "1\n"); }), 1);
}

TEST_F(Settings, NotifyAWriteOfTheSameValue) {
  EXPECT_EQ(CountNotifications(kFlag, [this] { Echo(FileOf(kFlag), "0\n"); }), 1);
}

TEST_F(Settings, NotifyTheKeyThatWasWrittenAndNoOther) {
  Subscribe(kFlag);
  EXPECT_EQ(CountNotifications(kConsent, [this] { Echo(FileOf(kConsent), "1\n"); }), 1);
  EXPECT_EQ(m_Counts[kFlag], 0);
}

TEST_F(Settings, NotifyEachWriteThatFollowsANotification) {
  Subscribe(kFlag);
  m_OnChanged = [this](const std::string& key) {
    if (key == kFlag && m_Counts[kFlag] < 6) {
      const std::string value = std::to_string(m_Counts[kFlag]);
      m_Counts[kFlag] % 2 == 0 ? Echo(FileOf(kFlag), value) : ReplaceFile(Folder() / FileOf(kFlag), value);
    }
    if (key == kFlag && m_Counts[kFlag] == 6) {
      ui_app_exit();
    }
  };
  m_Application.onCreate = [this] { Echo(FileOf(kFlag), "9\n"); };
  m_Application.Run();
  EXPECT_EQ(m_Counts[kFlag], 6);
}

TEST_F(Settings, NotifyAKeyThatAppearsLaterInNewDirectories) {
  const auto write = [this] {
    std::filesystem::create_directories((Folder() / FileOf(kLate)).parent_path());
    Echo(FileOf(kLate), "1\n");
  };
  EXPECT_EQ(CountNotifications(kLate, write), 1);
}

TEST_F(Settings, NotifyAKeyThatAppearsBesideOthers) {
  EXPECT_EQ(CountNotifications("db/fresh", [this] { Echo(FileOf("db/fresh"), "1\n"); }), 1);
  EXPECT_EQ(settings_unsubscribe("db/fresh", &OnChanged), kSettingsDone);
}

TEST_F(Settings, NotifyAKeyWhoseDirectoryWasRemovedAndMadeAgain) {
  const auto replaceDirectory = [this] {
    Remove("settings/db/device-detector-service");
    std::filesystem::create_directories((Folder() / FileOf(kFlag)).parent_path());
    Echo(FileOf(kFlag), "1\n");
  };
  EXPECT_EQ(CountNotifications(kFlag, replaceDirectory), 1);
}

TEST_F(Settings, NotifyAWriteBetweenTheSubscriptionAndTheMainLoop) {
  Subscribe(kFlag);
  Echo(FileOf(kFlag), "1\n");
  m_OnChanged = [](const std::string& key) {
    if (key == kFlag) {
      ui_app_exit();
    }
  };
  m_Application.onCreate = [this] { EXPECT_EQ(m_Counts[kFlag], 0) << "before the main loop"; };
  m_Application.Run();
  EXPECT_EQ(m_Counts[kFlag], 1);
}

TEST_F(Settings, AreSilentAboutARemovedKey) {
  EXPECT_EQ(CountNotifications(kFlag, [this] { Remove(FileOf(kFlag)); }), 0);
}

TEST_F(Settings, AreSilentAfterTheUnsubscribe) {
  const auto writeAndUnsubscribe = [this] {
    Echo(FileOf(kFlag), "1\n");
    EXPECT_EQ(settings_unsubscribe(kFlag, &OnChanged), kSettingsDone);
  };
  EXPECT_EQ(CountNotifications(kFlag, writeAndUnsubscribe), 0);
}

TEST_F(Settings, MayBeUnsubscribedByTheirOwnCallback) {
  m_OnChanged = [](const std::string& key) {
    if (key == kFlag) {
      EXPECT_EQ(settings_unsubscribe(kFlag, &OnChanged), kSettingsDone);
    }
  };
  const auto writeTwice = [this] {
    Echo(FileOf(kFlag), "1\n");
    Echo(FileOf(kFlag), "2\n");
  };
  EXPECT_EQ(CountNotifications(kFlag, writeTwice), 1);
}

TEST_F(Settings, MayBeUnsubscribedByTheCallbackBeforeThem) {
  Subscribe(kFlag);
  static int otherCount = 0;
  const SettingsChangedCallback other = [](const SettingsNode*, void*) { ++otherCount; };
  EXPECT_EQ(settings_subscribe(kFlag, other, nullptr), kSettingsDone);
  m_OnChanged = [other](const std::string& key) {
    if (key == kFlag) {
      EXPECT_EQ(settings_unsubscribe(kFlag, other), kSettingsDone);
    }
  };
  RunWith([this] { Echo(FileOf(kFlag), "1\n"); });
  EXPECT_EQ(m_Counts[kFlag], 1);
  EXPECT_EQ(otherCount, 0);
}

TEST_F(Settings, AreSilentOnceTheEndIsRequested) {
  Subscribe(kFlag);
  m_Application.onCreate = [this] { m_Application.Send(1); };
  m_Application.onEvent = [this](std::int32_t) {
    Echo(FileOf(kFlag), "1\n");
    ui_app_exit();
  };
  m_Application.onDestroy = [this] { Echo(FileOf(kFlag), "2\n"); };
  m_Application.Run();
  EXPECT_EQ(m_Counts[kFlag], 0);
}

TEST_F(Settings, HaveNoNameForNoNode) {
  EXPECT_EQ(settings_node_name(nullptr), nullptr);
}

// The two signs of one write, in every order in which they can come.
TEST_F(Settings, CountOneWriteOnceByCreationOrByClosing) {
  const auto file = Folder() / "settings/state";
  KeyState state(file);
  EXPECT_FALSE(state.TakeChange()) << "nothing there";
  Echo("settings/state", "");
  EXPECT_FALSE(state.TakeChange()) << "opened, not written yet";
  Echo("settings/state", "1");
  EXPECT_TRUE(state.TakeChange());
  EXPECT_FALSE(state.TakeClosing()) << "the same write";
  EXPECT_TRUE(state.TakeClosing()) << "a further write, though of the same value";
  Echo("settings/state", "2");
  EXPECT_TRUE(state.TakeClosing());
  EXPECT_FALSE(state.TakeChange()) << "known already";
  Remove("settings/state");
  EXPECT_FALSE(state.TakeChange());
  EXPECT_FALSE(state.TakeClosing());
}

}  // namespace
}  // namespace orvex::port
