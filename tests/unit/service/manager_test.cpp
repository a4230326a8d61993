// The run controller: its workers, its callbacks and its clock.
#include "orvex/platform/remote_voice.h"
#include "support/wave_file.h"
#include "unit/service/manager_support.h"

namespace {

using orvex::test::During;
using orvex::test::ManagerTest;
using testing::ElementsAre;

using Manager = ManagerTest;

TEST_F(Manager, BeginsWithNothingDone) {
  EXPECT_STREQ(manager.GetTerminateStatus(), "etc");
  EXPECT_FALSE(manager.GetSyncResult());
  EXPECT_EQ(manager.GetSyncStartTime(), 0U);
}

TEST_F(Manager, StopsNobodyWhenItIsToldNobody) {
  EXPECT_THAT(During(world, [this] { manager.m_StopOrvex(0); }), ElementsAre("I0 Stop Orvex[0]"));
}

TEST_F(Manager, EverySelectorButTheRecordersStartsThePlayerOnce) {
  const orvex::test::SilentWave sound(0.1);
  world.soundFile = sound.Path();
  EXPECT_TRUE(manager.m_StartOrvex(7));
  EXPECT_EQ(world.runningWorkers, 1);
  EXPECT_THAT(During(world, [this] { EXPECT_TRUE(manager.m_StartOrvex(ORVEX_WORKER_SOUND_PLAYER)); }),
              ElementsAre("I0 Start Orvex[2]", "I0 start Sound Player", "I0 Sound Player already started"));
  world.AdvanceMs(1000);
  EXPECT_EQ(world.runningWorkers, 0);
}

TEST_F(Manager, StoppingWaitsForARecorderThreadThatStillAsksTheRemote) {
  world.answers.Next("bt_hid_send_rc_command", {kVoiceInProgress, kVoiceInProgress});
  manager.m_StartOrvex(ORVEX_WORKER_BT_RECORDER);
  manager.m_StopOrvex(ORVEX_WORKER_BT_RECORDER);
  EXPECT_EQ(world.scheduler.Now(), std::chrono::milliseconds(100));
  EXPECT_TRUE(world.journal.Has("> bt_hid_rc_stop_sending_voice(null) = 0"));
}

TEST_F(Manager, ADestroyedControllerStopsItsRecording) {
  auto other = std::make_unique<OrvexManager>();
  other->m_StartOrvex(ORVEX_WORKER_BT_RECORDER);
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

// Callbacks that are handed no controller.
struct Callback {
  const char* name;
  void (*function)(void*);
};

class ManagerCallbacks : public Manager, public testing::WithParamInterface<Callback> {};

TEST_P(ManagerCallbacks, WithoutAControllerOnlyLogThatUnderTheirOwnName) {
  EXPECT_THAT(During(world, [] { GetParam().function(nullptr); }),
              ElementsAre(std::string("I0 ") + GetParam().name, "E2 pThis is null", "E2 Assertion failed"));
  for (const orvex::world::Entry& entry : world.journal.Entries()) {
    EXPECT_EQ(entry.function, GetParam().name) << entry.text;
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, ManagerCallbacks,
    testing::Values(Callback{"m_OnEndAmientNoiseCallback", OrvexManager::m_OnEndAmientNoiseCallback},
                    Callback{"m_OnEndCalculationDiffCallback", OrvexManager::m_OnEndCalculationDiffCallback},
                    Callback{"m_OnAbnomalStatusCallback", OrvexManager::m_OnAbnomalStatusCallback},
                    Callback{"m_OnEndWavPlayCallback", OrvexManager::m_OnEndWavPlayCallback},
                    Callback{"m_OnCancelWavPlayCallback", OrvexManager::m_OnCancelWavPlayCallback}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
