// settings_get_int(): values, their range and how a read fails.
#include <climits>

#include "conformance/port_test.h"
#include "orvex/platform/settings.h"

namespace orvex::conformance {
namespace {

constexpr const char* kKey = "db/conformance/value";
constexpr int kUntouched = 4711;

class Settings : public PortTest {
protected:
  void SetUp() override { ORVEX_NEEDS(kSettings); }

  static void ExpectRead(int expected) {
    int value = kUntouched;
    EXPECT_EQ(settings_get_int(kKey, &value), kSettingsDone);
    EXPECT_EQ(value, expected);
  }
  static void ExpectFailure(int result) {
    int value = kUntouched;
    EXPECT_EQ(settings_get_int(kKey, &value), result);
    EXPECT_EQ(value, kUntouched);
  }
};

TEST_F(Settings, AreReadAsTheyWereWrittenLast) {
  ORVEX_NEEDS(kPutSetting);
  for (const int value : {0, 1, -1, INT_MAX, INT_MIN}) {
    Port().PutSetting(kKey, value);
    ExpectRead(value);
  }
}

TEST_F(Settings, AreReadOnAnyThreadBeforeTheMainLoopAndInIt) {
  ORVEX_NEEDS(kPutSetting);
  Port().PutSetting(kKey, 12);
  Thread([] { ExpectRead(12); }).Join();
  OnMainLoop([] { ExpectRead(12); });
}

TEST_F(Settings, ThatDoNotExistAreAFailedRead) {
  int value = kUntouched;
  EXPECT_EQ(settings_get_int("db/conformance/nowhere", &value), kSettingsNoKey);
  EXPECT_EQ(value, kUntouched);
}

TEST_F(Settings, ThatAreNoIntegerAreAFailedRead) {
  ORVEX_NEEDS(kSpoilSetting);
  Port().SpoilSetting(kKey);
  ExpectFailure(kSettingsNoInteger);
}

TEST_F(Settings, OfAStoreThatCannotBeReadAreAFailedRead) {
  ORVEX_NEEDS(kBreakSettings);
  Port().Break(Ability::kBreakSettings);
  ExpectFailure(kSettingsUnreadable);
}

}  // namespace
}  // namespace orvex::conformance
