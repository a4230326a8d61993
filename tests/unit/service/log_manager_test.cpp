// A single telemetry record: sent, kept or lost, by the owner's consent and the collector's answer.
#include <type_traits>

#include "orvex/platform/event_log.h"
#include "orvex/platform/settings.h"
#include "unit/service/log_manager_support.h"

namespace {

using orvex::test::During;
using orvex::test::LogManagerTest;
using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::has_virtual_destructor_v<COrvexLogManager>);

using LogManager = LogManagerTest;

TEST_F(LogManager, SubscribesToTheConsentWhenItIsMadeAndCancelsWhenItIsGone) {
  ASSERT_EQ(world.subscriptions.size(), 1U);
  EXPECT_EQ(world.subscriptions.front().key, orvex::world::kConsentKey);
  manager.reset();
  EXPECT_THAT(world.subscriptions, IsEmpty());
}

TEST_F(LogManager, WorksWithoutItsSubscription) {
  world.answers.Next("settings_subscribe", {kSettingsUnreadable});
  COrvexLogManager another;
  Consent(1);
  EXPECT_EQ(another.AddEventLog(Record("a")), 1);
  EXPECT_THAT(ValuesSent(), ElementsAre("a"));
}

TEST_F(LogManager, TakesEveryValueButZeroForConsent) {
  for (const int value : {1, 2, -1, INT32_MIN, INT32_MAX}) {
    Consent(value);
    world.events.clear();
    EXPECT_TRUE(Add("a"));
    EXPECT_TRUE(world.journal.Has("I0 defaultdisclaimeragree=" + std::to_string(value)));
    EXPECT_THAT(ValuesSent(), ElementsAre("a")) << value;
  }
}

TEST_F(LogManager, TakesASettingThatCannotBeReadForNoConsent) {
  Consent(1);
  for (const int result : {kSettingsNoKey, kSettingsNoInteger, kSettingsUnreadable, 1, INT32_MIN}) {
    const std::string text = std::to_string(result);
    world.answers.Next("settings_get_int", {result});
    EXPECT_THAT(During(world, [this] { EXPECT_TRUE(Add("kept")); }),
                ElementsAre("> settings_get_int(\"db/menu/tessar/homedatacontrol/defaultdisclaimeragree\") = " + text,
                            "E2 (r=" + text + ") get defaultdisclaimeragree failed"));
  }
  EXPECT_THAT(ValuesSent(), IsEmpty());
}

TEST_F(LogManager, TakesASettingThatDoesNotExistForNoConsent) {
  world.settings.clear();
  EXPECT_TRUE(Add("kept"));
  EXPECT_TRUE(world.journal.Has("E2 (r=-1) get defaultdisclaimeragree failed"));
  EXPECT_THAT(ValuesSent(), IsEmpty());
}

TEST_F(LogManager, LooksAtTheSettingForEachRecord) {
  for (const int value : {1, 0, 1, 0, 0, 1}) {
    Consent(value);
    EXPECT_TRUE(Add(std::to_string(value)));
  }
  EXPECT_THAT(ValuesSent(), ElementsAre("1", "1", "1")) << "and keeps the others although later ones are sent";
}

TEST_F(LogManager, AsksForTheCollectorUntilItIsThereAndThenNeverAgain) {
  Consent(1);
  world.hasEventLog = false;
  EXPECT_FALSE(Add("lost"));
  EXPECT_FALSE(Add("lost"));
  EXPECT_EQ(world.journal.Count("E2 Get[CLogger]instance err"), 2);
  world.hasEventLog = true;
  EXPECT_TRUE(Add("first"));
  world.hasEventLog = false;
  EXPECT_TRUE(Add("second"));
  EXPECT_EQ(world.journal.CountStartingWith("> event_log_get_instance()"), 3);
  EXPECT_THAT(ValuesSent(), ElementsAre("first", "second"));
}

TEST_F(LogManager, LosesARecordForWhichThereIsNoCollector) {
  Consent(1);
  world.hasEventLog = false;
  EXPECT_FALSE(Add("lost"));
  world.hasEventLog = true;
  Write(1);
  EXPECT_THAT(ValuesSent(), IsEmpty());
}

TEST_F(LogManager, LosesARecordThatTheCollectorDoesNotAccept) {
  Consent(1);
  for (const int result : {kEventLogRefused, kEventLogUnreachable, 2, INT32_MIN, INT32_MAX}) {
    world.answers.Next("event_log_add_sync", {result});
    EXPECT_FALSE(Add("lost"));
    EXPECT_EQ(world.journal.Count("I0 add event log sync:" + std::to_string(result)), 1);
  }
  EXPECT_EQ(world.journal.Count("E2 Could not send event log"), 5);
  EXPECT_EQ(world.journal.CountStartingWith("> event_log_get_instance()"), 1) << "it is the same collector still";
  Write(1);
  EXPECT_THAT(ValuesSent(), IsEmpty()) << "no second try";
}

// What a record holds, what is logged and what is sent of it.
struct Content {
  const char* name;
  std::vector<std::pair<const char*, const char*>> members;
  const char* line;
  const char* sent;
};

class RecordContent : public LogManager, public testing::WithParamInterface<Content> {};

TEST_P(RecordContent, IsLoggedAsItStandsAndSentAsServiceEventCategoryAndValue) {
  Consent(1);
  FwMessage message;
  message.type = "not sent";
  for (const auto& [key, text] : GetParam().members) {
    message.body[key] = text;
  }
  EXPECT_EQ(manager->AddEventLog(message), 1);
  EXPECT_TRUE(world.journal.Has(std::string("I0 ") + GetParam().line));
  EXPECT_TRUE(world.journal.Has("> event_log_add_sync(" + std::string(GetParam().sent) + ") = 1"));
}

INSTANTIATE_TEST_SUITE_P(
    LogManager, RecordContent,
    testing::Values(Content{"Whole",
                            {{"service_name", "s"}, {"event_name", "e"}, {"category_name", "c"}, {"value_string", "v"}},
                            "Service[s] Event[e] Category[c] Value[v]",
                            "s, e, c, v"},
                    Content{"WithAnEmptyService",
                            {{"service_name", ""}, {"event_name", "e"}, {"category_name", "c"}, {"value_string", "v"}},
                            "Service[] Event[e] Category[c] Value[v]",
                            "21_remocon, e, c, v"},
                    Content{"Empty", {}, "Service[] Event[] Category[] Value[]", "21_remocon, , , "},
                    Content{
                        "ThatLooksLikeAFormat",
                        {{"service_name", "%s"}, {"event_name", "%n"}, {"category_name", "%d%"}, {"value_string", "ü"}},
                        "Service[%s] Event[%n] Category[%d%] Value[ü]",
                        "%s, %n, %d%, ü"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
