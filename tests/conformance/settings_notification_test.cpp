// Subscriptions to settings: who is told of a write, when, and when no more.
#include "conformance/port_test.h"
#include "orvex/platform/settings.h"

namespace orvex::conformance {
namespace {

constexpr const char* kWatchedKey = "db/conformance/watched";
// In which a notification that is under way would have come.
constexpr double kQuietMs = 200.0;

// One subscriber; two of them have callbacks of their own.
struct Subscriber {
  int notifications = 0;
  std::string name;
  std::string thread;
  std::function<void()> onChange = [] {};
  const PortDriver* port = nullptr;

  void Take(const SettingsNode* node) {
    ++notifications;
    const char* const text = settings_node_name(node);
    name = text == nullptr ? "null" : text;
    thread = port->CurrentThread();
    onChange();
  }
};

void OnChange(const SettingsNode* node, void* subscriber) {
  static_cast<Subscriber*>(subscriber)->Take(node);
}
void OnChangeForTheOther(const SettingsNode* node, void* subscriber) {
  static_cast<Subscriber*>(subscriber)->Take(node);
}

class SettingsNotification : public PortTest {
protected:
  SettingsNotification() {
    subscriber.port = &Port();
    other.port = &Port();
  }
  ~SettingsNotification() override {
    settings_unsubscribe(kWatchedKey, &OnChange);
    settings_unsubscribe(kWatchedKey, &OnChangeForTheOther);
  }

  void Subscribe() { EXPECT_EQ(settings_subscribe(kWatchedKey, &OnChange, &subscriber), kSettingsDone); }
  void SubscribeTheOther() { EXPECT_EQ(settings_subscribe(kWatchedKey, &OnChangeForTheOther, &other), kSettingsDone); }
  std::function<void()> Put(int value) {
    return [this, value] { Port().PutSetting(kWatchedKey, value); };
  }
  std::function<bool()> Told(int times) {
    return [this, times] { return subscriber.notifications >= times; };
  }

  Subscriber subscriber;
  Subscriber other;
};

TEST_F(SettingsNotification, ComesOnTheMainLoopWithTheKeyAfterTheWrite) {
  ORVEX_NEEDS(kPutSetting);
  const std::string mainLoop = Port().CurrentThread();
  int value = 0;
  subscriber.onChange = [&] { settings_get_int(kWatchedKey, &value); };
  application.Do([&] { Subscribe(); }).Do(Put(5)).Until("the notification", Told(1)).Run();
  EXPECT_EQ(subscriber.name, kWatchedKey);
  EXPECT_EQ(subscriber.thread, mainLoop);
  EXPECT_EQ(value, 5);
}

TEST_F(SettingsNotification, ComesForAWriteOfTheSameValueToo) {
  ORVEX_NEEDS(kPutSetting);
  Put(5)();
  application.Do([&] { Subscribe(); })
      .After(kQuietMs)
      .Do([&] { subscriber.notifications = 0; })
      .Do(Put(5))
      .Until("the notification", Told(1))
      .Run();
}

TEST_F(SettingsNotification, DoesNotComeInsideTheSubscription) {
  ORVEX_NEEDS(kPutSetting);
  bool hasReturned = false;
  subscriber.onChange = [&] { EXPECT_TRUE(hasReturned); };
  application
      .Do([&] {
        Port().PutSetting(kWatchedKey, 5);
        Subscribe();
        hasReturned = true;
        EXPECT_EQ(subscriber.notifications, 0);
      })
      .Do(Put(6))
      .Until("the notification", Told(1))
      .Run();
}

TEST_F(SettingsNotification, ComesToASubscriptionThatIsOlderThanTheMainLoop) {
  ORVEX_NEEDS(kPutSetting);
  Subscribe();
  application.Do(Put(5)).Until("the notification", Told(1)).Run();
}

TEST_F(SettingsNotification, DoesNotComeForOtherKeys) {
  ORVEX_NEEDS(kPutSetting);
  application.Do([&] { Subscribe(); })
      .Do([&] {
        Port().PutSetting("db/conformance/watched2", 5);
        Port().PutSetting("db/conformance/watch", 5);
      })
      .After(kQuietMs)
      .Run();
  EXPECT_EQ(subscriber.notifications, 0);
}

TEST_F(SettingsNotification, NeedsNoneOfTheKeysText) {
  ORVEX_NEEDS(kPutSetting);
  application
      .Do([&] {
        std::string key = kWatchedKey;
        EXPECT_EQ(settings_subscribe(key.c_str(), &OnChange, &subscriber), kSettingsDone);
        key.assign(key.size(), 'x');
      })
      .Do(Put(5))
      .Until("the notification", Told(1))
      .Run();
  EXPECT_EQ(subscriber.name, kWatchedKey);
}

TEST_F(SettingsNotification, ComesToTwoSubscribersOfAKey) {
  ORVEX_NEEDS(kPutSetting);
  application
      .Do([&] {
        Subscribe();
        SubscribeTheOther();
      })
      .Do(Put(5))
      .Until("both notifications", [&] { return subscriber.notifications > 0 && other.notifications > 0; })
      .Run();
}

TEST_F(SettingsNotification, IsSubscribedOnceForOneKeyAndCallback) {
  ORVEX_NEEDS(kPutSetting);
  application
      .Do([&] {
        Subscribe();
        EXPECT_EQ(settings_subscribe(kWatchedKey, &OnChange, &other), kSettingsAlreadySubscribed);
      })
      .Do(Put(5))
      .Until("the notification", Told(1))
      .After(kQuietMs)
      .Run();
  EXPECT_EQ(other.notifications, 0);
  EXPECT_EQ(settings_unsubscribe(kWatchedKey, &OnChange), kSettingsDone);
  EXPECT_EQ(settings_unsubscribe(kWatchedKey, &OnChange), kSettingsNotSubscribed);
}

TEST_F(SettingsNotification, IsUnsubscribedByKeyAndCallback) {
  ORVEX_NEEDS(kSettings);
  OnMainLoop([&] {
    Subscribe();
    EXPECT_EQ(settings_unsubscribe(kWatchedKey, &OnChangeForTheOther), kSettingsNotSubscribed);
    EXPECT_EQ(settings_unsubscribe("db/conformance/watched2", &OnChange), kSettingsNotSubscribed);
    EXPECT_EQ(settings_unsubscribe(kWatchedKey, &OnChange), kSettingsDone);
  });
}

TEST_F(SettingsNotification, DoesNotComeAfterTheUnsubscriptionThoughItWasUnderWay) {
  ORVEX_NEEDS(kPutSetting);
  application
      .Do([&] {
        Subscribe();
        SubscribeTheOther();
      })
      .Do([&] {
        Port().PutSetting(kWatchedKey, 5);
        EXPECT_EQ(settings_unsubscribe(kWatchedKey, &OnChange), kSettingsDone);
      })
      .Until("the other's notification", [&] { return other.notifications > 0; })
      .After(kQuietMs)
      .Run();
  EXPECT_EQ(subscriber.notifications, 0);
}

TEST_F(SettingsNotification, MayBeUnsubscribedByItsOwnCallback) {
  ORVEX_NEEDS(kPutSetting);
  subscriber.onChange = [] { EXPECT_EQ(settings_unsubscribe(kWatchedKey, &OnChange), kSettingsDone); };
  application.Do([&] { Subscribe(); })
      .Do(Put(5))
      .Until("the notification", Told(1))
      .Do([&] { SubscribeTheOther(); })
      .Do(Put(6))
      .Until("the other's notification", [&] { return other.notifications > 0; })
      .After(kQuietMs)
      .Run();
  EXPECT_EQ(subscriber.notifications, 1);
}

TEST_F(SettingsNotification, DoesNotComeToOneWhomAnotherCallbackHasUnsubscribed) {
  ORVEX_NEEDS(kPutSetting);
  subscriber.onChange = [] { settings_unsubscribe(kWatchedKey, &OnChangeForTheOther); };
  other.onChange = [] { settings_unsubscribe(kWatchedKey, &OnChange); };
  application
      .Do([&] {
        Subscribe();
        SubscribeTheOther();
      })
      .Do(Put(5))
      .Until("a notification", [&] { return subscriber.notifications + other.notifications > 0; })
      .After(kQuietMs)
      .Run();
  EXPECT_EQ(subscriber.notifications + other.notifications, 1);
}

}  // namespace
}  // namespace orvex::conformance
