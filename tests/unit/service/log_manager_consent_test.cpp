// Records that wait for the owner's consent: what a change of the setting sends, what it keeps and what it loses.
#include "unit/service/log_manager_support.h"

namespace {

using orvex::test::Concat;
using orvex::test::During;
using orvex::test::FunctionsThatLogged;
using orvex::test::kInstance;
using orvex::test::LogManagerTest;
using orvex::test::Texts;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr char kNotAgreed[] = "D0 user doesn't agree default disclaimer!";
// Both steps of a notification begin with an empty line.
const Texts kNotified = {"I0 ", "I0 "};

class KeptRecords : public LogManagerTest {
protected:
  // From here on the collector is known and no longer asked for.
  void MeetTheCollector() {
    Consent(1);
    EXPECT_EQ(manager->AddEventLog(Record("first of all")), 1);
    world.events.clear();
  }
};

TEST_F(KeptRecords, AreSentOldestFirstWhenTheOwnerAgrees) {
  Keep({"a", "b", "c"});
  Texts expected = Concat({kNotified, Asked(1)});
  expected = Concat({expected, Asked(1), {Announced("a"), kInstance, Added("a", 1), "I0 add event log sync:1"}});
  expected = Concat({expected, Asked(1), Sent("b")});
  expected = Concat({expected, Asked(1), Sent("c")});
  EXPECT_THAT(Write(1), ElementsAreArray(expected));
  EXPECT_THAT(ValuesSent(), ElementsAre("a", "b", "c"));
}

TEST_F(KeptRecords, AreSentOnceOnly) {
  Keep({"a"});
  Write(1);
  EXPECT_THAT(Write(1), ElementsAreArray(Concat({kNotified, Asked(1)})));
  EXPECT_THAT(ValuesSent(), ElementsAre("a"));
}

TEST_F(KeptRecords, StayWhileTheOwnerDoesNotAgree) {
  Keep({"a", "b"});
  EXPECT_THAT(Write(0), ElementsAreArray(Concat({kNotified, Asked(0), {kNotAgreed}})));
  EXPECT_THAT(world.events, IsEmpty());
  Write(1);
  EXPECT_THAT(ValuesSent(), ElementsAre("a", "b"));
}

TEST_F(KeptRecords, StayWhenTheChangedSettingCannotBeRead) {
  Keep({"a"});
  world.answers.Next("settings_get_int", {-2});
  EXPECT_THAT(Write(1), ElementsAreArray(Concat({kNotified, CouldNotAsk(-2), {kNotAgreed}})));
  Write(1);
  EXPECT_THAT(ValuesSent(), ElementsAre("a"));
}

TEST_F(KeptRecords, AreNotMovedByANewRecordThatIsSentAtOnce) {
  Keep({"kept"});
  Consent(1);
  EXPECT_EQ(manager->AddEventLog(Record("new")), 1);
  EXPECT_THAT(ValuesSent(), ElementsAre("new"));
  Write(1);
  EXPECT_THAT(ValuesSent(), ElementsAre("new", "kept"));
}

TEST_F(KeptRecords, AreCopiesOfWhatTheyWereWhenTheyWereAdded) {
  FwMessage message = Record("as added");
  Consent(0);
  EXPECT_EQ(manager->AddEventLog(message), 1);
  message.body["value_string"] = "changed later";
  Write(1);
  EXPECT_THAT(ValuesSent(), ElementsAre("as added"));
}

TEST_F(KeptRecords, AreKeptInAnyNumberAndInOrder) {
  Texts values;
  for (int i = 0; i < 1000; ++i) {
    values.push_back(std::to_string(i));
  }
  Keep(values);
  Write(1);
  EXPECT_THAT(ValuesSent(), ElementsAreArray(values));
}

TEST_F(KeptRecords, AreLostWhenTheCollectorRefusesThemButTheOthersAreSent) {
  MeetTheCollector();
  Keep({"a", "b", "c"});
  world.answers.Next("event_log_add_sync", {1, 0, 1});
  Texts expected = Concat({kNotified, Asked(1), Concat({Asked(1), Sent("a")})});
  expected = Concat({expected, Asked(1), Refused("b", 0)});
  expected = Concat({expected, Asked(1), Sent("c")});
  EXPECT_THAT(Write(1), ElementsAreArray(expected));
  Write(1);
  EXPECT_THAT(ValuesSent(), ElementsAre("a", "c"));
}

TEST_F(KeptRecords, AreLostWithoutACollectorWhichIsAskedForWithEach) {
  Keep({"a", "b"});
  world.hasEventLog = false;
  Write(1);
  EXPECT_EQ(world.journal.Count("> event_log_get_instance() = null"), 2);
  EXPECT_EQ(world.journal.Count("E2 Get[CLogger]instance err"), 2);
  world.hasEventLog = true;
  Write(1);
  EXPECT_THAT(world.events, IsEmpty());
}

TEST_F(KeptRecords, AreLostWhenTheOwnerTakesTheConsentBackWhileTheyAreSent) {
  MeetTheCollector();
  Keep({"a", "b", "c"});
  world.onCall = [this](const std::string& text) {
    if (text.compare(0, 19, "event_log_add_sync(") == 0) {
      Consent(0);
    }
  };
  Texts expected = Concat({kNotified, Asked(1), Concat({Asked(1), Sent("a")})});
  expected = Concat({expected, Asked(0), Asked(0)});
  EXPECT_THAT(Write(1), ElementsAreArray(expected));
  world.onCall = nullptr;
  EXPECT_THAT(Write(1), ElementsAreArray(Concat({kNotified, Asked(1)})));
  EXPECT_THAT(ValuesSent(), ElementsAre("a"));
}

TEST_F(KeptRecords, ThatMeetASettingWhichCannotBeReadAreLostAlone) {
  MeetTheCollector();
  Keep({"a", "b", "c"});
  // The notification's own look, then one for each record.
  world.answers.Next("settings_get_int", {0, 0, -3, 0});
  Texts expected = Concat({kNotified, Asked(1), Concat({Asked(1), Sent("a")})});
  expected = Concat({expected, CouldNotAsk(-3), Concat({Asked(1), Sent("c")})});
  EXPECT_THAT(Write(1), ElementsAreArray(expected));
  EXPECT_THAT(Write(1), ElementsAreArray(Concat({kNotified, Asked(1)})));
  EXPECT_THAT(ValuesSent(), ElementsAre("a", "c"));
}

TEST_F(KeptRecords, AreGoneWithTheirManager) {
  Keep({"a"});
  manager = std::make_unique<COrvexLogManager>();
  Write(1);
  EXPECT_THAT(world.events, IsEmpty());
}

TEST_F(KeptRecords, BelongToTheirOwnManager) {
  COrvexLogManager another;
  Keep({"a"});
  Consent(0);
  EXPECT_EQ(another.AddEventLog(Record("b")), 1);
  world.subscriptions.at(0).callback(nullptr, &another);
  EXPECT_THAT(world.events, IsEmpty());
  Consent(1);
  world.subscriptions.at(0).callback(nullptr, &another);
  EXPECT_THAT(ValuesSent(), ElementsAre("b"));
}

TEST_F(KeptRecords, AreNeitherSentNorLostByANotificationOfAnotherKey) {
  Keep({"a"});
  Consent(1);
  world.ChangeSetting("db/device-detector-service/optical_change_flag", 1);
  world.AdvanceMs(0);
  EXPECT_THAT(world.events, IsEmpty());
}

TEST_F(KeptRecords, AreSentWhateverTheNotificationCallsTheKey) {
  Keep({"a"});
  Consent(1);
  world.NotifySetting(kConsentKey, nullptr);
  world.AdvanceMs(0);
  EXPECT_THAT(ValuesSent(), ElementsAre("a"));
}

TEST_F(KeptRecords, NotificationsNameTheirTwoStepsInTheLog) {
  Write(0);
  EXPECT_THAT(FunctionsThatLogged(world.journal, "I0 "),
              ElementsAre("m_DefaultDisclaimerAgreementChanged", "m_ProcessDefaultDsiclaimerAgreementChanged"));
  for (const orvex::world::Entry& entry : world.journal.Entries()) {
    EXPECT_TRUE(entry.file.empty() || entry.file == "OrvexLogManager.cpp") << entry.text;
  }
}

TEST_F(KeptRecords, ANotificationWithoutAManagerIsReportedAndTheSettingStillRead) {
  Keep({"a"});
  const auto notify = [this] { world.subscriptions.at(0).callback(nullptr, nullptr); };
  const Texts begin = {"I0 ", "E2 Assertion failed", "I0 "};
  EXPECT_THAT(During(world, notify), ElementsAreArray(Concat({begin, Asked(0), {kNotAgreed}})));
  Consent(1);
  EXPECT_THAT(During(world, notify), ElementsAreArray(Concat({begin, Asked(1)})));
  Write(1);
  EXPECT_THAT(ValuesSent(), ElementsAre("a")) << "the kept ones were left alone";
}

}  // namespace
