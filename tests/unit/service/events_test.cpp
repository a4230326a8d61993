// What each framework event makes the service do, and the delay that a run leaves.
#include <gmock/gmock.h>

#include "Common/AudioControl.h"
#include "Util/DebugDump.h"
#include "Util/Singleton.h"
#include "unit/service/run_support.h"

namespace {

using orvex::test::FromTo;
using orvex::test::LastOf;
using orvex::test::Run;
using orvex::test::Texts;
using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

class Events : public Run {
protected:
  // The singletons announce themselves once per process: not in a test's journal.
  Events() {
    CSingleton<CAudioControl>::GetInstance();
    CSingleton<CDebugDump>::GetInstance();
  }
  std::uint32_t DelayAfter(int buffers, std::uint32_t base) {
    world.delayMs = base;
    StartRecording();
    LearnAmbient();
    DeliverPair(buffers);
    EXPECT_TRUE(world.RunToEnd());
    return world.delayMs;
  }
};

TEST_F(Events, StartSyncReportsReadsTheBaseSendsTheNextEventAndTakesTheTime) {
  const Texts texts = Handle(ORVEX_START_SYNC);
  EXPECT_EQ(texts.at(0), "E0 pEvent.type 10000");
  EXPECT_EQ(texts.at(1), "I0 ORVEX_START_SYNC");
  EXPECT_THAT(FromTo(texts, "> settings_get_int(\"db/menu/tessar/homedatacontrol/defaultdisclaimeragree\") = 0",
                     "I0 1700000000:0"),
              ElementsAre("> settings_get_int(\"db/menu/tessar/homedatacontrol/defaultdisclaimeragree\") = 0",
                          "I0 defaultdisclaimeragree=0", "> IAudioControl::getInstance() = object",
                          "> getSpdifOutDelay() = 0", "E0 spdif out delay = 100", "> avoc_get_delay(1) = 0",
                          "I0 avoc delay = 100", "> SendEvent(10004, nobody)", "I0 1700000000:0"));
}

TEST_F(Events, StartRecodingStartsTheRecorderThread) {
  EXPECT_THAT(Handle(ORVEX_START_BT_RECODING),
              ElementsAre("E0 pEvent.type 10004", "I0 ORVEX_START_BT_RECODING", "I0 Start Orvex[1]",
                          "I0 start BT Recoder", "> pthread_create() = 0"));
  world.AdvanceMs(1);
  Handle(ORVEX_FINISH_BT_RECODING);
}

TEST_F(Events, ARecorderThatCannotBeStartedEndsTheMainLoop) {
  world.answers.Always("pthread_create", 11);
  const Texts texts = Handle(ORVEX_START_BT_RECODING);
  EXPECT_THAT(LastOf(texts, 2), ElementsAre("E2 fail bt recoding", "> ui_app_exit()"));
}

TEST_F(Events, ASoundThatCannotBeStartedEndsTheMainLoop) {
  world.answers.Always("snd_pcm_open", -2);
  const Texts texts = Handle(ORVEX_PLAY_INAUDIBLE_SOUND);
  EXPECT_EQ(texts.at(1), "I0 ORVEX_PLAY_INAUDIBLE_SOUND");
  EXPECT_THAT(LastOf(texts, 3), ElementsAre("E2 fail to play wave", "E2 fail to play sound", "> ui_app_exit()"));
  EXPECT_STREQ(app.GetManager().GetTerminateStatus(), "play_fail");
}

TEST_F(Events, StopAndFinishStopOneWorkerEach) {
  EXPECT_THAT(Handle(ORVEX_STOP_INAUDIBLE_SOUND),
              ElementsAre("E0 pEvent.type 10003", "I0 ORVEX_STOP_INAUDIBLE_SOUND", "I0 Stop Orvex[2]",
                          "I0 stop Sound Player", "I0 Sound Player is not started"));
  EXPECT_THAT(Handle(ORVEX_FINISH_BT_RECODING),
              ElementsAre("E0 pEvent.type 10006", "I0 ORVEX_FINISH_BT_RECODING", "I0 Stop Orvex[1]",
                          "I0 stop BT Recoder", "I0 BT Recoder is not started"));
}

TEST_F(Events, ExitEndsTheMainLoop) {
  EXPECT_THAT(Handle(ORVEX_EXIT), ElementsAre("E0 pEvent.type 10007", "I0 ORVEX_EXIT", "> ui_app_exit()"));
}

TEST_F(Events, EndSyncStopsComputesSetsSavesDumpsAndReportsInThisOrder) {
  StartRecording();
  LearnAmbient();
  DeliverPair(10);
  EXPECT_THAT(Handle(ORVEX_END_SYNC),
              ElementsAre("E0 pEvent.type 10001", "I0 ORVEX_END_SYNC", "I0 Stop Orvex[3]", "I0 stop BT Recoder",
                          "> pthread_join()", "> bt_hid_unset_audio_data_receive_cb() = 0",
                          "> bt_hid_rc_stop_sending_voice(null) = 0", "E0 Stop bt audio", "I0 stop Sound Player",
                          "I0 Sound Player is not started", "I0 diff time = 0.1650\n", "I0 delay = 0",
                          "> avoc_set_delay(0, 1) = 0", "I0 after delay = 0", "> IAudioControl::getInstance() = object",
                          "> getSpdifOutDelay() = 0", "E0 spdif out delay = 0", "> avoc_get_delay(1) = 0",
                          "E0 main out delay = 0, avoc delay = 0", "I0 CDebugDumpImplFile Stop",
                          "> IAudioControl::getInstance() = object", "> getSpdifOutDelay() = 0",
                          "E0 spdif out delay = 0", "> avoc_get_delay(1) = 0", "I0 avoc delay = 0", StartsWith("I0 17"),
                          StartsWith("I0 text = {result=pass;delay=0;du="),
                          "> settings_get_int(\"db/menu/tessar/homedatacontrol/defaultdisclaimeragree\") = 0",
                          "I0 defaultdisclaimeragree=0"));
}

TEST_F(Events, TheDelayThatEndSyncDumpsIsTheOneThatItHasSet) {
  StartRecording();
  LearnAmbient();
  DeliverPair(2);
  Handle(ORVEX_END_SYNC);
  EXPECT_EQ(orvex::test::DumpFiles::Results(),
            "[RESULT] [36] - [38] : 0.0330\n"
            "result_set_value : [main: 0], [spdif: 100]\n"
            "result_set_value : [main: 0], [spdif: 67]\n");
}

TEST(CorrectedDelay, IsTheBaseLessTheWholeMillisecondsOfTheDifference) {
  EXPECT_EQ(OrvexManager::CorrectedDelay(120, 0.012), 108U);
  EXPECT_EQ(OrvexManager::CorrectedDelay(100, -0.0305), 130U);
  EXPECT_EQ(OrvexManager::CorrectedDelay(100, 0.0305), 70U);
  EXPECT_EQ(OrvexManager::CorrectedDelay(100, 0.0009), 100U);
  EXPECT_EQ(OrvexManager::CorrectedDelay(100, 0.1), 0U);
  EXPECT_EQ(OrvexManager::CorrectedDelay(100, 0.25), 0U);
}

TEST_F(Events, APositiveDifferenceShortensTheDelayByWholeMilliseconds) {
  EXPECT_EQ(DelayAfter(2, 120), 87U);
}

TEST_F(Events, ANegativeDifferenceLengthensIt) {
  EXPECT_EQ(DelayAfter(-2, 100), 133U);
}

TEST_F(Events, ADelayBelowZeroBecomesZero) {
  EXPECT_EQ(DelayAfter(15, 100), 0U);
}

TEST_F(Events, ADelayBeyond32BitsBecomesZero) {
  EXPECT_EQ(DelayAfter(-1, 4294967290U), 0U);
}

TEST_F(Events, TheLargestDelayIsStillSet) {
  EXPECT_EQ(DelayAfter(-1, 4294967279U), 4294967295U);
}

TEST_F(Events, AHugeBaseIsUnsigned) {
  EXPECT_EQ(DelayAfter(1, 4294967295U), 4294967279U);
}

TEST_F(Events, WithoutADifferenceNothingIsSetButEverythingElseIsDone) {
  StartRecording();
  const Texts texts = Handle(ORVEX_END_SYNC);
  EXPECT_THAT(
      FromTo(texts, "I0 diff time = 0.0000\n", "I0 CDebugDumpImplFile Stop"),
      ElementsAre("I0 diff time = 0.0000\n", "E2 no_diff_detected!!\n", "> IAudioControl::getInstance() = object",
                  "> getSpdifOutDelay() = 0", "E0 spdif out delay = 100", "> avoc_get_delay(1) = 0",
                  "E0 main out delay = 0, avoc delay = 100", "I0 CDebugDumpImplFile Stop"));
  EXPECT_THAT(texts, Contains(StartsWith("I0 text = {result=fail;delay=100;")));
  EXPECT_STREQ(app.GetManager().GetTerminateStatus(), "diff_fail");
  EXPECT_FALSE(app.GetManager().GetSyncResult());
  EXPECT_EQ(world.delayMs, 100U);
}

TEST_F(Events, ASecondEndSyncComputesTheSameDelayAgainFromTheSameBase) {
  StartRecording();
  LearnAmbient();
  DeliverPair(3);
  Handle(ORVEX_END_SYNC);
  EXPECT_EQ(world.delayMs, 51U);
  EXPECT_THAT(Handle(ORVEX_END_SYNC), IsSupersetOf({"I0 BT Recoder is not started", "I0 Sound Player is not started",
                                                    "I0 diff time = 0.0495\n", "I0 delay = 51", "E2 already null"}));
  EXPECT_EQ(world.delayMs, 51U);
}

TEST_F(Events, TwoEndsInTheQueueBeforeTheExitSetTheSameDelayAndEndOneProcess) {
  StartRecording();
  LearnAmbient();
  world.onCall = [this](const std::string& text) {
    if (text == "SendEvent(10001)") {
      world.onCall = nullptr;
      world.Inject(ORVEX_END_SYNC);
    }
  };
  DeliverPair(3);
  world.Inject(ORVEX_EXIT);
  ASSERT_TRUE(world.RunToEnd());
  EXPECT_EQ(world.journal.Count("I0 ORVEX_END_SYNC"), 2);
  EXPECT_EQ(world.journal.Count("> avoc_set_delay(51, 1) = 0"), 2);
  EXPECT_EQ(world.journal.Count("E2 already null"), 1) << "the second line for the closed dump";
  EXPECT_EQ(world.journal.CountStartingWith("I0 text = {result=pass;delay=51;"), 3) << "each end, and the destroy step";
  EXPECT_EQ(world.journal.Count("> ui_app_exit()"), 1);
  EXPECT_EQ(world.delayMs, 51U);
}

class Retry : public Run {
protected:
  void StartFrom(std::uint32_t base) {
    world.delayMs = base;
    StartRecording();
  }
};

TEST_F(Retry, IsGrantedWhenTheDelayHasChangedAndTakesTheNewBaseAndTime) {
  StartFrom(100);
  world.delayMs = 80;
  world.AdvanceMs(500);
  EXPECT_THAT(
      Handle(ORVEX_RESTART_BT_RECODING),
      ElementsAre("E0 pEvent.type 10005", "I0 ORVEX_RESTART_BT_RECODING", "I0 check retry",
                  "> IAudioControl::getInstance() = object", "> getSpdifOutDelay() = 0", "E0 spdif out delay = 80",
                  "> avoc_get_delay(1) = 0", "I0 avoc delay = 80", "> SendEvent(10004)", "I0 1700000000:501000"));
  world.journal.Clear();
  world.AdvanceMs(1);
  EXPECT_THAT(world.journal.Texts(),
              ElementsAre("E0 pEvent.type 10004", "I0 ORVEX_START_BT_RECODING", "I0 Start Orvex[1]",
                          "I0 start BT Recoder", "I0 BT Recoder already started"));
  LearnAmbient();
  DeliverPair(1);
  Handle(ORVEX_END_SYNC);
  EXPECT_EQ(world.delayMs, 64U) << "80 - 16";
  EXPECT_TRUE(world.journal.CountStartingWith("I0 text = {result=pass;delay=64;du=1;"));
}

TEST_F(Retry, IsRefusedWithAnUnchangedDelay) {
  StartFrom(100);
  const Texts texts = Handle(ORVEX_RESTART_BT_RECODING);
  EXPECT_THAT(LastOf(texts, 2), ElementsAre("E2 no need to retry sync", "> ui_app_exit()"));
}

TEST_F(Retry, IsRefusedWithADelayOfZero) {
  StartFrom(100);
  world.delayMs = 0;
  EXPECT_THAT(Handle(ORVEX_RESTART_BT_RECODING), Contains("E2 no need to retry sync"));
}

TEST_F(Retry, IsGrantedTwiceAndEndsTheServiceTheThirdTime) {
  StartFrom(100);
  for (const std::uint32_t changed : {90U, 80U}) {
    world.delayMs = changed;
    EXPECT_THAT(Handle(ORVEX_RESTART_BT_RECODING), Not(Contains("E2 no need to retry sync")));
  }
  world.delayMs = 70;
  EXPECT_THAT(Handle(ORVEX_RESTART_BT_RECODING), IsSupersetOf({"E2 no need to retry sync", "> ui_app_exit()"}));
  // A refusal starts the count anew.
  world.delayMs = 60;
  EXPECT_THAT(Handle(ORVEX_RESTART_BT_RECODING), Contains("> SendEvent(10004)"));
}

}  // namespace
