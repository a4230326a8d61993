// A single telemetry record: sent, kept or lost, by the owner's consent and the collector's answer.
#include <limits>
#include <type_traits>

#include "unit/service/log_manager_support.h"

namespace {

using orvex::test::Concat;
using orvex::test::During;
using orvex::test::kInstance;
using orvex::test::LogManagerTest;
using orvex::test::Texts;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr char kNoInstance[] = "> event_log_get_instance() = null";

static_assert(std::has_virtual_destructor_v<COrvexLogManager>);

class LogManager : public LogManagerTest {
protected:
  // What the journal shows of a record, and whether the manager says that it is sent or kept.
  Texts Add(const FwMessage& message, int expected) {
    return During(world, [&] { EXPECT_EQ(manager->AddEventLog(message), expected); });
  }
  Texts Add(const std::string& value, int expected) { return Add(Record(value), expected); }
};

TEST_F(LogManager, SubscribesToTheConsentWhenItIsMadeAndCancelsWhenItIsGone) {
  EXPECT_THAT(world.journal.Texts(),
              ElementsAre("> settings_subscribe(\"db/menu/tessar/homedatacontrol/defaultdisclaimeragree\") = 0"));
  EXPECT_THAT(During(world, [this] { manager.reset(); }),
              ElementsAre("> settings_unsubscribe(\"db/menu/tessar/homedatacontrol/defaultdisclaimeragree\") = 0"));
  EXPECT_THAT(world.subscriptions, IsEmpty());
}

TEST_F(LogManager, WorksWithoutItsSubscription) {
  world.answers.Next("settings_subscribe", {-3});
  COrvexLogManager another;
  EXPECT_EQ(world.journal.Texts().back(),
            "> settings_subscribe(\"db/menu/tessar/homedatacontrol/defaultdisclaimeragree\") = -3");
  Consent(1);
  EXPECT_EQ(another.AddEventLog(Record("a")), 1);
  EXPECT_THAT(ValuesSent(), ElementsAre("a"));
}

TEST_F(LogManager, SendsARecordAtOnceWhenTheOwnerHasAgreed) {
  Consent(1);
  EXPECT_THAT(
      Add("a", 1),
      ElementsAreArray(Concat({Asked(1), {Announced("a"), kInstance, Added("a", 1), "I0 add event log sync:1"}})));
  EXPECT_THAT(ValuesSent(), ElementsAre("a"));
}

TEST_F(LogManager, TakesEveryValueButZeroForConsent) {
  for (const int value : {1, 2, -1, INT32_MIN, INT32_MAX}) {
    Consent(value);
    world.events.clear();
    EXPECT_EQ(Add("a", 1).at(1), "I0 defaultdisclaimeragree=" + std::to_string(value));
    EXPECT_THAT(ValuesSent(), ElementsAre("a")) << value;
  }
}

TEST_F(LogManager, KeepsARecordSilentlyWhenTheOwnerHasNotAgreed) {
  EXPECT_THAT(Add("a", 1), ElementsAreArray(Asked(0)));
  EXPECT_THAT(world.events, IsEmpty());
}

TEST_F(LogManager, TakesASettingThatCannotBeReadForNoConsent) {
  Consent(1);
  for (const int result : {-1, -2, -3, 1, INT32_MIN}) {
    world.answers.Next("settings_get_int", {result});
    EXPECT_THAT(Add("kept", 1), ElementsAreArray(CouldNotAsk(result)));
  }
  EXPECT_THAT(world.events, IsEmpty());
}

TEST_F(LogManager, TakesASettingThatDoesNotExistForNoConsent) {
  world.settings.clear();
  EXPECT_THAT(Add("a", 1), ElementsAreArray(CouldNotAsk(-1)));
}

TEST_F(LogManager, LooksAtTheSettingForEachRecord) {
  for (const int value : {1, 0, 1, 0, 0, 1}) {
    Consent(value);
    EXPECT_EQ(Add(std::to_string(value), 1).at(1), "I0 defaultdisclaimeragree=" + std::to_string(value));
  }
  EXPECT_THAT(ValuesSent(), ElementsAre("1", "1", "1")) << "and keeps the others although later ones are sent";
}

TEST_F(LogManager, AsksForTheCollectorUntilItIsThereAndThenNeverAgain) {
  Consent(1);
  world.hasEventLog = false;
  for (int time = 0; time < 2; ++time) {
    EXPECT_THAT(Add("lost", 0),
                ElementsAreArray(Concat({Asked(1), {Announced("lost"), kNoInstance, "E2 Get[CLogger]instance err"}})));
  }
  world.hasEventLog = true;
  EXPECT_THAT(Add("first", 1),
              ElementsAreArray(
                  Concat({Asked(1), {Announced("first"), kInstance, Added("first", 1), "I0 add event log sync:1"}})));
  world.hasEventLog = false;
  EXPECT_THAT(Add("second", 1), ElementsAreArray(Concat({Asked(1), Sent("second")})));
  EXPECT_THAT(ValuesSent(), ElementsAre("first", "second"));
}

TEST_F(LogManager, LosesARecordForWhichThereIsNoCollector) {
  Consent(1);
  world.hasEventLog = false;
  Add("lost", 0);
  world.hasEventLog = true;
  Write(1);
  EXPECT_EQ(Add("sent", 1).back(), "I0 add event log sync:1");
  EXPECT_THAT(ValuesSent(), ElementsAre("sent"));
}

TEST_F(LogManager, DoesNotAskForTheCollectorBeforeItHasSomethingToSend) {
  Consent(0);
  Add("kept", 1);
  EXPECT_EQ(world.journal.CountStartingWith("> event_log_get_instance()"), 0);
}

TEST_F(LogManager, KeepsTheCollectorThatRefusedARecord) {
  Consent(1);
  world.answers.Next("event_log_add_sync", {0});
  Add("lost", 0);
  EXPECT_THAT(Add("sent", 1), ElementsAreArray(Concat({Asked(1), Sent("sent")})));
}

TEST_F(LogManager, LosesARecordThatTheCollectorDoesNotAccept) {
  Consent(1);
  Add("asks for the collector", 1);
  world.events.clear();
  for (const int result : {0, -1, 2, INT32_MIN, INT32_MAX}) {
    world.answers.Next("event_log_add_sync", {result});
    EXPECT_THAT(Add("lost", 0), ElementsAreArray(Concat({Asked(1), Refused("lost", result)})));
  }
  Write(1);
  EXPECT_THAT(world.events, IsEmpty()) << "no second try";
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
  EXPECT_THAT(Add(message, 1),
              ElementsAreArray(
                  Concat({Asked(1),
                          {GetParam().line, kInstance, "> event_log_add_sync(" + std::string(GetParam().sent) + ") = 1",
                           "I0 add event log sync:1"}})));
}

INSTANTIATE_TEST_SUITE_P(
    LogManager, RecordContent,
    testing::Values(Content{"Whole",
                            {{"service_name", "s"}, {"event_name", "e"}, {"category_name", "c"}, {"value_string", "v"}},
                            "I0 Service[s] Event[e] Category[c] Value[v]",
                            "s, e, c, v"},
                    Content{"WithoutAService",
                            {{"event_name", "e"}, {"category_name", "c"}, {"value_string", "v"}},
                            "I0 Service[] Event[e] Category[c] Value[v]",
                            "21_remocon, e, c, v"},
                    Content{"WithAnEmptyService",
                            {{"service_name", ""}, {"event_name", "e"}, {"category_name", "c"}, {"value_string", "v"}},
                            "I0 Service[] Event[e] Category[c] Value[v]",
                            "21_remocon, e, c, v"},
                    Content{"WithoutAnEvent",
                            {{"service_name", "s"}, {"category_name", "c"}, {"value_string", "v"}},
                            "I0 Service[s] Event[] Category[c] Value[v]",
                            "s, , c, v"},
                    Content{"WithoutACategory",
                            {{"service_name", "s"}, {"event_name", "e"}, {"value_string", "v"}},
                            "I0 Service[s] Event[e] Category[] Value[v]",
                            "s, e, , v"},
                    Content{"WithoutAValue",
                            {{"service_name", "s"}, {"event_name", "e"}, {"category_name", "c"}},
                            "I0 Service[s] Event[e] Category[c] Value[]",
                            "s, e, c, "},
                    Content{"Empty", {}, "I0 Service[] Event[] Category[] Value[]", "21_remocon, , , "},
                    Content{
                        "ThatLooksLikeAFormat",
                        {{"service_name", "%s"}, {"event_name", "%n"}, {"category_name", "%d%"}, {"value_string", "ü"}},
                        "I0 Service[%s] Event[%n] Category[%d%] Value[ü]",
                        "%s, %n, %d%, ü"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
