// Records that wait for the owner's consent: what a change of the setting sends, what it keeps and what it loses.
#include "orvex/platform/event_log.h"
#include "orvex/platform/settings.h"
#include "unit/service/log_manager_support.h"

namespace {

using orvex::test::FunctionsThatLogged;
using orvex::test::LogManagerTest;
using orvex::test::Texts;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using KeptRecords = LogManagerTest;

TEST_F(KeptRecords, AreSentOnceWhenTheOwnerAgrees) {
  Keep({"a", "b", "c"});
  Write(1);
  Write(1);
  EXPECT_THAT(ValuesSent(), ElementsAre("a", "b", "c"));
}

TEST_F(KeptRecords, StayWhileTheOwnerDoesNotAgree) {
  Keep({"a", "b"});
  Write(0);
  EXPECT_THAT(ValuesSent(), IsEmpty());
  Write(1);
  EXPECT_THAT(ValuesSent(), ElementsAre("a", "b"));
}

TEST_F(KeptRecords, StayWhenTheChangedSettingCannotBeRead) {
  Keep({"a"});
  world.answers.Next("settings_get_int", {kSettingsNoInteger});
  Write(1);
  EXPECT_TRUE(world.journal.Has("E2 (r=-2) get defaultdisclaimeragree failed"));
  EXPECT_TRUE(world.journal.Has("D0 user doesn't agree default disclaimer!"));
  EXPECT_THAT(ValuesSent(), IsEmpty());
  Write(1);
  EXPECT_THAT(ValuesSent(), ElementsAre("a"));
}

TEST_F(KeptRecords, AreNotMovedByANewRecordThatIsSentAtOnce) {
  Keep({"kept"});
  Consent(1);
  EXPECT_TRUE(Add("new"));
  EXPECT_THAT(ValuesSent(), ElementsAre("new"));
  Write(1);
  EXPECT_THAT(ValuesSent(), ElementsAre("new", "kept"));
}

TEST_F(KeptRecords, AreCopiesOfWhatTheyWereWhenTheyWereAdded) {
  FwMessage message = Record("as added");
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
  Keep({"a", "b", "c"});
  world.answers.Next("event_log_add_sync", {kEventLogAccepted, kEventLogRefused, kEventLogAccepted});
  Write(1);
  EXPECT_EQ(world.journal.Count("E2 Could not send event log"), 1);
  EXPECT_EQ(world.answers.Calls("event_log_add_sync"), 3);
  Write(1);
  EXPECT_EQ(world.answers.Calls("event_log_add_sync"), 3) << "no second try";
}

TEST_F(KeptRecords, AreLostWithoutACollectorWhichIsAskedForWithEach) {
  Keep({"a", "b"});
  world.hasEventLog = false;
  Write(1);
  EXPECT_EQ(world.journal.Count("> event_log_get_instance() = null"), 2);
  EXPECT_EQ(world.journal.Count("E2 Get[CLogger]instance err"), 2);
  world.hasEventLog = true;
  Write(1);
  EXPECT_THAT(ValuesSent(), IsEmpty());
}

TEST_F(KeptRecords, AreLostWhenTheOwnerTakesTheConsentBackWhileTheyAreSent) {
  Keep({"a", "b", "c"});
  world.onCall = [this](const std::string& text) {
    if (text.compare(0, 19, "event_log_add_sync(") == 0) {
      Consent(0);
    }
  };
  Write(1);
  world.onCall = nullptr;
  EXPECT_EQ(world.answers.Calls("settings_get_int"), 3 + 1 + 3) << "when they were kept, on the change, for each";
  Write(1);
  EXPECT_THAT(ValuesSent(), ElementsAre("a"));
}

TEST_F(KeptRecords, ThatMeetASettingWhichCannotBeReadAreLostAlone) {
  Keep({"a", "b", "c"});
  // The notification reads the setting once, then each record does.
  world.answers.Next("settings_get_int", {kSettingsDone, kSettingsDone, kSettingsUnreadable, kSettingsDone});
  Write(1);
  Write(1);
  EXPECT_THAT(ValuesSent(), ElementsAre("a", "c"));
}

TEST_F(KeptRecords, AreGoneWithTheirManager) {
  Keep({"a"});
  manager = std::make_unique<COrvexLogManager>();
  Write(1);
  EXPECT_THAT(ValuesSent(), IsEmpty());
}

TEST_F(KeptRecords, BelongToTheirOwnManager) {
  COrvexLogManager another;
  Keep({"a"});
  EXPECT_EQ(another.AddEventLog(Record("b")), 1);
  Consent(1);
  world.subscriptions.at(0).callback(nullptr, &another);
  EXPECT_THAT(ValuesSent(), ElementsAre("b"));
}

TEST_F(KeptRecords, AreNeitherSentNorLostByANotificationOfAnotherKey) {
  Keep({"a"});
  Consent(1);
  world.ChangeSetting(orvex::world::kOpticalFlagKey, 1);
  world.AdvanceMs(0);
  EXPECT_THAT(ValuesSent(), IsEmpty());
}

TEST_F(KeptRecords, AreSentWhateverTheNotificationCallsTheKey) {
  Keep({"a"});
  Consent(1);
  world.NotifySetting(orvex::world::kConsentKey, nullptr);
  world.AdvanceMs(0);
  EXPECT_THAT(ValuesSent(), ElementsAre("a"));
}

TEST_F(KeptRecords, NotificationsNameTheirTwoStepsInTheLog) {
  Write(0);
  EXPECT_THAT(FunctionsThatLogged(world.journal, "I0 "),
              ElementsAre("m_DefaultDisclaimerAgreementChanged", "m_ProcessDefaultDsiclaimerAgreementChanged"));
}

TEST_F(KeptRecords, StayWhenANotificationComesWithoutAManager) {
  Keep({"a"});
  Consent(1);
  world.subscriptions.at(0).callback(nullptr, nullptr);
  EXPECT_EQ(world.journal.Count("E2 Assertion failed"), 1);
  EXPECT_THAT(ValuesSent(), IsEmpty());
  Write(1);
  EXPECT_THAT(ValuesSent(), ElementsAre("a"));
}

}  // namespace
