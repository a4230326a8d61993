// The run controller: its workers, its callbacks and its clock.
#include <gmock/gmock.h>

#include "unit/service/run_support.h"

namespace {

using orvex::test::During;
using orvex::test::LastOf;
using orvex::test::NoisyTone19;
using orvex::test::Run;
using orvex::test::Texts;
using testing::ElementsAre;
using testing::StartsWith;

class Manager : public testing::Test {
protected:
  orvex::world::World world;
  OrvexManager manager;
};

TEST_F(Manager, BeginsWithNothingDone) {
  EXPECT_STREQ(manager.GetTerminateStatus(), "etc");
  EXPECT_FALSE(manager.GetSyncResult());
  EXPECT_EQ(manager.GetSyncStartTime(), 0U);
}

TEST_F(Manager, StopWithNothingStartedOnlyLogs) {
  EXPECT_THAT(During(world, [this] { manager.m_StopOrvex(3); }),
              ElementsAre("I0 Stop Orvex[3]", "I0 stop BT Recoder", "I0 BT Recoder is not started",
                          "I0 stop Sound Player", "I0 Sound Player is not started"));
  EXPECT_THAT(During(world, [this] { manager.m_StopOrvex(0); }), ElementsAre("I0 Stop Orvex[0]"));
}

TEST_F(Manager, ARecorderThatRunsIsNotStartedAgain) {
  EXPECT_TRUE(manager.m_StartOrvex(1));
  EXPECT_THAT(During(world, [this] { EXPECT_TRUE(manager.m_StartOrvex(1)); }),
              ElementsAre("I0 Start Orvex[1]", "I0 start BT Recoder", "I0 BT Recoder already started"));
  manager.m_StopOrvex(1);
}

TEST_F(Manager, AThreadThatCannotBeCreatedIsTriedAgainAfterATenthOfASecond) {
  world.answers.Next("pthread_create", {11});
  EXPECT_THAT(
      During(world, [this] { EXPECT_TRUE(manager.m_StartOrvex(1)); }),
      ElementsAre("I0 Start Orvex[1]", "I0 start BT Recoder", "> pthread_create() = 11", "E2 pthread_create FAIL 1st!!",
                  "> usleep(100000)", "> pthread_create() = 0", "E0 Create Thread Success at 2nd time"));
  EXPECT_EQ(world.scheduler.Now(), std::chrono::milliseconds(100));
  manager.m_StopOrvex(1);
}

TEST_F(Manager, AThreadThatCannotBeCreatedTwiceIsAFailureAndTheRecorderIsNotStarted) {
  world.answers.Next("pthread_create", {11, 11});
  EXPECT_THAT(During(world, [this] { EXPECT_FALSE(manager.m_StartOrvex(1)); }),
              ElementsAre("I0 Start Orvex[1]", "I0 start BT Recoder", "> pthread_create() = 11",
                          "E2 pthread_create FAIL 1st!!", "> usleep(100000)", "> pthread_create() = 11",
                          "E2 pthread_create FAIL 2nd!!", "E2 Assertion failed"));
  EXPECT_THAT(During(world, [this] { manager.m_StopOrvex(1); }),
              ElementsAre("I0 Stop Orvex[1]", "I0 stop BT Recoder", "I0 BT Recoder is not started"));
}

TEST_F(Manager, EveryOtherSelectorStartsThePlayerOnce) {
  const orvex::test::SilentWave sound(0.1);
  world.soundFile = sound.Path();
  world.journal.Clear();
  EXPECT_TRUE(manager.m_StartOrvex(7));
  EXPECT_EQ(world.journal.Texts().at(1), "I0 start Sound Player");
  EXPECT_EQ(world.journal.Texts().at(2), "I0 start Player ");
  EXPECT_THAT(During(world, [this] { EXPECT_TRUE(manager.m_StartOrvex(2)); }),
              ElementsAre("I0 Start Orvex[2]", "I0 start Sound Player", "I0 Sound Player already started"));
  world.AdvanceMs(1000);
  EXPECT_TRUE(world.journal.Has(
      "> file_location(\"/usr/apps/com.norvel.tv.orvex-service/res/sound/LR_test_sample_17_19.wav\")"));
  EXPECT_THAT(
      During(world, [this] { manager.m_StopOrvex(2); }),
      ElementsAre("I0 Stop Orvex[2]", "I0 stop Sound Player", "I0 cancel_thread", "> ecore_thread_cancel(null)"));
}

TEST_F(Manager, ADeviceThatCannotBeOpenedIsAPlayFailureAndThePlayerIsNotStarted) {
  world.answers.Always("snd_pcm_open", -16);
  EXPECT_FALSE(manager.m_StartOrvex(2));
  EXPECT_EQ(world.journal.Texts().back(), "E2 fail to play wave");
  EXPECT_STREQ(manager.GetTerminateStatus(), "play_fail");
  EXPECT_THAT(During(world, [this] { manager.m_StopOrvex(2); }),
              ElementsAre("I0 Stop Orvex[2]", "I0 stop Sound Player", "I0 Sound Player is not started"));
}

TEST_F(Manager, ARecordingThatCannotBeStartedLeavesTheThreadToBeJoined) {
  world.answers.Always("bt_hid_send_rc_command", -5);
  EXPECT_TRUE(manager.m_StartOrvex(1));
  world.AdvanceMs(1);
  const Texts texts = world.journal.Texts();
  EXPECT_THAT(LastOf(texts, 3),
              ElementsAre("E2 Fail to start bt audio [ret = -5]", "E2 fail bt recoding", "> SendEvent(10007, nobody)"));
  EXPECT_EQ(world.journal.Entries().back().thread, "recorder");
  EXPECT_STREQ(manager.GetTerminateStatus(), "bt_fail");
  EXPECT_THAT(During(world, [this] { manager.m_StopOrvex(1); }),
              ElementsAre("I0 Stop Orvex[1]", "I0 stop BT Recoder", "> pthread_join()", "E2 Already ready state!!"));
}

TEST_F(Manager, StoppingWaitsForARecorderThreadThatStillAsksTheRemote) {
  world.answers.Next("bt_hid_send_rc_command", {-115, -115});
  manager.m_StartOrvex(1);
  manager.m_StopOrvex(1);
  EXPECT_EQ(world.scheduler.Now(), std::chrono::milliseconds(100));
  EXPECT_TRUE(world.journal.Has("> bt_hid_rc_stop_sending_voice(null) = 0"));
}

TEST_F(Manager, ADestroyedControllerStopsItsRecording) {
  auto other = std::make_unique<OrvexManager>();
  other->m_StartOrvex(1);
  world.AdvanceMs(1);
  other.reset();
  EXPECT_TRUE(world.journal.Has("E0 Stop bt audio"));
  EXPECT_EQ(world.voiceCallback, nullptr);
}

TEST_F(Manager, TheClockIsTheWallClockInMillisecondsModulo32Bits) {
  struct Row {
    std::int64_t wallClockUs;
    std::uint32_t milliseconds;
    const char* line;
  };
  for (const Row& row :
       {Row{0, 0, "I0 0:0"}, Row{1'000'999, 1000, "I0 1:999"}, Row{4'294'967'295'999, 4294967295U, "I0 4294967:295999"},
        Row{4'294'967'296'000, 0, "I0 4294967:296000"},
        Row{1'700'000'000'123'456, 3487918203U, "I0 1700000000:123456"}}) {
    world.wallClockUs = row.wallClockUs;
    EXPECT_THAT(During(world, [&] { EXPECT_EQ(OrvexManager::m_GetCurrentTime(), row.milliseconds) << row.line; }),
                ElementsAre(row.line));
  }
}

struct Callback {
  const char* name;
  void (*function)(void*);
  Texts calls;
  const char* status;
};

class ManagerCallbacks : public Manager, public testing::WithParamInterface<Callback> {};

TEST_P(ManagerCallbacks, SayTheirNameThenSendTheirEvents) {
  Texts expected = {std::string("I0 ") + GetParam().name};
  expected.insert(expected.end(), GetParam().calls.begin(), GetParam().calls.end());
  EXPECT_THAT(During(world, [this] { GetParam().function(&manager); }), testing::ElementsAreArray(expected));
  EXPECT_STREQ(manager.GetTerminateStatus(), GetParam().status);
}

TEST_P(ManagerCallbacks, WithoutAControllerOnlyLogThatUnderTheirOwnName) {
  EXPECT_THAT(During(world, [] { GetParam().function(nullptr); }),
              ElementsAre(std::string("I0 ") + GetParam().name, "E2 pThis is null", "E2 Assertion failed"));
  for (const orvex::world::Entry& entry : world.journal.Entries()) {
    EXPECT_EQ(entry.function, GetParam().name) << entry.text;
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, ManagerCallbacks,
    testing::Values(Callback{"m_OnEndAmientNoiseCallback",
                             OrvexManager::m_OnEndAmientNoiseCallback,
                             {"> SendEvent(10002, nobody)"},
                             "etc"},
                    Callback{"m_OnEndCalculationDiffCallback",
                             OrvexManager::m_OnEndCalculationDiffCallback,
                             {"> SendEvent(10001, nobody)", "> SendEvent(10007, nobody)"},
                             "etc"},
                    Callback{"m_OnAbnomalStatusCallback",
                             OrvexManager::m_OnAbnomalStatusCallback,
                             {"> SendEvent(10007, nobody)"},
                             "abnormal_input_fail"},
                    Callback{"m_OnEndWavPlayCallback",
                             OrvexManager::m_OnEndWavPlayCallback,
                             {"> SendEvent(10001, nobody)", "> SendEvent(10007, nobody)"},
                             "etc"},
                    Callback{"m_OnCancelWavPlayCallback", OrvexManager::m_OnCancelWavPlayCallback, {}, "etc"}),
    [](const auto& row) { return std::string(row.param.name); });

using WholeRun = Run;

TEST_F(WholeRun, TheSoundEndsWithoutAPairAndTheRunEndsWithDiffFail) {
  StartRecording();
  LearnAmbient();
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_STREQ(app.GetManager().GetTerminateStatus(), "diff_fail");
  EXPECT_EQ(world.journal.CountStartingWith("I0 text = {result=fail;"), 2);
  EXPECT_EQ(world.journal.Count("I0 m_OnEndWavPlayCallback"), 1);
  EXPECT_EQ(world.delayMs, 100U);
}

TEST_F(WholeRun, APlayerThatCouldNotStartItsWorkerRunsIntoTheTimeLimit) {
  world.answers.Always("ecore_thread_run", 0);
  StartRecording();
  LearnAmbient();
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_NEAR(world.EndedAtMs(), 10000, 1e-6);
  EXPECT_TRUE(world.journal.Has("E2 already thread stop"));
  EXPECT_STREQ(app.GetManager().GetTerminateStatus(), "etc");
}

TEST_F(WholeRun, ElevenNoisyDetectionsEndItAsAbnormal) {
  StartRecording();
  LearnAmbient();
  for (int i = 0; i < 11; ++i) {
    world.Deliver(NoisyTone19(3000));
  }
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_STREQ(app.GetManager().GetTerminateStatus(), "abnormal_input_fail");
  EXPECT_EQ(world.journal.CountStartingWith("I0 text = {result=fail;"), 1) << "only the destroy step reports";
}

TEST_F(WholeRun, ARefusedRemoteEndsItAsBtFail) {
  world.answers.Always("bt_hid_send_rc_command", -115);
  world.Create(app);
  EXPECT_TRUE(world.RunToEnd());
  EXPECT_STREQ(app.GetManager().GetTerminateStatus(), "bt_fail");
  EXPECT_NEAR(world.EndedAtMs(), 200, 1e-6);
  EXPECT_EQ(world.journal.Count("E2 Fail bt_hid_send_rc_command [ret = -115]"), 4);
  EXPECT_EQ(world.journal.Count("E2 Fail to start bt audio [ret = -115]"), 1);
}

}  // namespace
