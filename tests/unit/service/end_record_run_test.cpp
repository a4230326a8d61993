// The end record in the life of the service: how each end of a run is reported, and how often.
#include <cerrno>
#include <string>

#include "unit/service/record_run_support.h"
#include "unit/service/run_support.h"

namespace {

using orvex::test::During;
using orvex::test::FromTo;
using orvex::test::RecordTest;
using orvex::test::Run;
using orvex::test::Texts;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

using OutcomeOfARun = RecordTest;

TEST_F(OutcomeOfARun, IsEtcBeforeAnythingHappened) {
  EXPECT_THAT(EndText(), StartsWith("{result=fail;delay=100;du="));
  EXPECT_THAT(EndText(), HasSubstr(";terminate=etc}"));
}

TEST_F(OutcomeOfARun, IsDoneWithTheDelayThatWasSet) {
  RunThatMeasures();
  EXPECT_EQ(TextsSent().back(), "{result=pass;delay=67;du=0;terminate=done}");
}

TEST_F(OutcomeOfARun, IsDiffFailWithTheDelayThatWas) {
  RunThatFindsNothing();
  EXPECT_EQ(TextsSent().back(), "{result=fail;delay=100;du=0;terminate=diff_fail}");
}

TEST_F(OutcomeOfARun, IsPlayFailWhenTheSoundCannotBePlayed) {
  Handle(kStartSync);
  world.answers.Always("snd_pcm_open", -ENOENT);
  EXPECT_FALSE(manager.m_StartOrvex(kPlayer));
  EXPECT_EQ(EndText(), "{result=fail;delay=100;du=0;terminate=play_fail}");
}

TEST_F(OutcomeOfARun, IsBtFailWhenTheRemoteRefuses) {
  Handle(kStartSync);
  world.answers.Always("bt_hid_set_audio_data_receive_cb", -1);
  StartRecorder();
  EXPECT_EQ(EndText(), "{result=fail;delay=100;du=0;terminate=bt_fail}");
}

TEST_F(OutcomeOfARun, IsAbnormalInputFailAfterTooMuchNoise) {
  Handle(kStartSync);
  OrvexManager::m_OnAbnomalStatusCallback(&manager);
  EXPECT_EQ(EndText(), "{result=fail;delay=100;du=0;terminate=abnormal_input_fail}");
}

TEST_F(OutcomeOfARun, StaysAPassOnceAnyRunOfTheProcessHasPassed) {
  RunThatMeasures();
  RunThatFindsNothing();
  EXPECT_EQ(TextsSent().back(), "{result=pass;delay=67;du=0;terminate=diff_fail}");
  OrvexManager::m_OnAbnomalStatusCallback(&manager);
  EXPECT_EQ(EndText(), "{result=pass;delay=67;du=0;terminate=abnormal_input_fail}");
  RunThatMeasures();
  EXPECT_EQ(TextsSent().back(), "{result=pass;delay=34;du=0;terminate=done}") << "67 was the base";
}

TEST_F(OutcomeOfARun, TurnsFromAFailIntoAPass) {
  RunThatFindsNothing();
  EXPECT_THAT(TextsSent().back(), StartsWith("{result=fail;"));
  RunThatMeasures();
  EXPECT_EQ(TextsSent().back(), "{result=pass;delay=67;du=0;terminate=done}");
}

TEST_F(OutcomeOfARun, IsReportedAfterTheDumpIsClosed) {
  Handle(kStartSync);
  StartRecorder();
  const Texts texts = During(world, [this] { Handle(kEndSync); });
  const std::string text = "I0 text = {result=fail;delay=100;du=0;terminate=diff_fail}";
  EXPECT_THAT(FromTo(texts, "I0 CDebugDumpImplFile Stop", text),
              ElementsAre("I0 CDebugDumpImplFile Stop", "> IAudioControl::getInstance() = object",
                          "> getSpdifOutDelay() = 0", "E0 spdif out delay = 100", "> avoc_get_delay(1) = 0",
                          "I0 avoc delay = 100", "I0 1700000000:0", text));
  EXPECT_EQ(texts.back(), "I0 add event log sync:1") << "nothing comes after the record";
}

TEST_F(OutcomeOfARun, DoesNotDependOnTheCollector) {
  world.answers.Always("event_log_add_sync", 0);
  RunThatMeasures();
  EXPECT_EQ(world.journal.Count("E2 Could not send event log"), 2);
  EXPECT_STREQ(manager.GetTerminateStatus(), "done");
  EXPECT_EQ(world.delayMs, 67U);
}

class RecordsOfALife : public Run {
protected:
  RecordsOfALife() { world.settings[kConsentKey] = 1; }
  Texts CategoriesAndTexts() const {
    Texts records;
    for (const orvex::world::EventRecord& record : world.events) {
      records.push_back(record.category + " " + record.value);
    }
    return records;
  }
  static constexpr char kConsentKey[] = "db/menu/tessar/homedatacontrol/defaultdisclaimeragree";
  static constexpr char kStart[] = "EV013 {device=acme|3;source=5;videoinfo=tv|7|60;codec=2}";
};

TEST_F(RecordsOfALife, AreOneStartAndTwoEndsWhenARunEnded) {
  StartRecording();
  LearnAmbient();
  DeliverPair(2);
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_THAT(CategoriesAndTexts(), ElementsAre(kStart, "EV012 {result=pass;delay=67;du=1;terminate=done}",
                                                "EV012 {result=pass;delay=67;du=1;terminate=done}"));
}

TEST_F(RecordsOfALife, ShowTheDelayThatSomebodySetAfterTheRun) {
  StartRecording();
  LearnAmbient();
  DeliverPair(2);
  world.onCall = [this](const std::string& text) {
    if (text == "ui_app_exit()") {
      world.delayMs = 55;
    }
  };
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_THAT(CategoriesAndTexts(), ElementsAre(kStart, "EV012 {result=pass;delay=67;du=1;terminate=done}",
                                                "EV012 {result=pass;delay=55;du=1;terminate=done}"));
}

TEST_F(RecordsOfALife, AreOneStartAndOneEndWhenTheTimeRanOut) {
  world.Create(app);
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_THAT(CategoriesAndTexts(), ElementsAre(kStart, "EV012 {result=fail;delay=100;du=10000;terminate=etc}"));
}

TEST_F(RecordsOfALife, AreOneEndWhenNoRunWasStarted) {
  // 1.7e12 ms is 395 turns of the clock and 3487918080 ms: more than half a turn.
  app.t_OnDestroy();
  EXPECT_THAT(CategoriesAndTexts(), ElementsAre("EV012 {result=fail;delay=100;du=-807049216;terminate=etc}"));
}

TEST_F(RecordsOfALife, AreSentInOrderWhenTheOwnerAgreesDuringTheRun) {
  world.settings[kConsentKey] = 0;
  StartRecording();
  EXPECT_TRUE(world.events.empty());
  world.ChangeSetting(kConsentKey, 1);
  LearnAmbient();
  DeliverPair(-2);
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_THAT(CategoriesAndTexts(), ElementsAre(kStart, "EV012 {result=pass;delay=133;du=1;terminate=done}",
                                                "EV012 {result=pass;delay=133;du=1;terminate=done}"));
}

TEST_F(RecordsOfALife, AreNeverSentWithoutConsent) {
  world.settings[kConsentKey] = 0;
  StartRecording();
  LearnAmbient();
  DeliverPair(2);
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_TRUE(world.events.empty());
  EXPECT_EQ(world.journal.CountStartingWith("> event_log"), 0);
}

}  // namespace
