// How the controller reacts to events where no test of the whole application shows it, and the delay that it derives
// from a difference.
#include "unit/service/manager_support.h"

namespace {

using orvex::test::Ambient;
using orvex::test::DumpFiles;
using orvex::test::During;
using orvex::test::ManagerTest;
using orvex::test::Texts;
using orvex::test::Tone;
using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::Not;

class Events : public ManagerTest {
protected:
  // What the journal shows of an event.
  Texts LinesOf(std::int32_t type) {
    return During(world, [&] { Handle(type); });
  }
};

TEST_F(Events, StopAndFinishStopOneWorkerEach) {
  EXPECT_THAT(LinesOf(ORVEX_STOP_INAUDIBLE_SOUND),
              ElementsAre("I0 ORVEX_STOP_INAUDIBLE_SOUND", "I0 Stop Orvex[2]", "I0 stop Sound Player",
                          "I0 Sound Player is not started"));
  EXPECT_THAT(LinesOf(ORVEX_FINISH_BT_RECODING), ElementsAre("I0 ORVEX_FINISH_BT_RECODING", "I0 Stop Orvex[1]",
                                                             "I0 stop BT Recoder", "I0 BT Recoder is not started"));
}

TEST_F(Events, TheResultFileHasTheDifferenceAndTheDelaysBeforeAndAfter) {
  RunHearing({Tone(17000, 5000), Ambient(), Tone(19000, 5000)});
  EXPECT_EQ(DumpFiles::Results(),
            "[RESULT] [36] - [38] : 0.0330\n"
            "result_set_value : [main: 0], [spdif: 100]\n"
            "result_set_value : [main: 0], [spdif: 67]\n");
}

TEST_F(Events, ASecondEndSyncComputesTheSameDelayAgainFromTheSameBase) {
  RunHearing({Tone(17000, 5000), Ambient(), Ambient(), Tone(19000, 5000)});
  EXPECT_EQ(world.delayMs, 51U);
  EXPECT_THAT(LinesOf(ORVEX_END_SYNC), IsSupersetOf({"I0 BT Recoder is not started", "I0 Sound Player is not started",
                                                     "I0 diff time = 0.0495\n", "I0 delay = 51", "E2 already null"}));
  EXPECT_EQ(world.delayMs, 51U);
}

TEST_F(Events, ARefusedRetryStartsTheCountAnew) {
  Handle(ORVEX_START_SYNC);
  for (const std::uint32_t changed : {90U, 80U}) {
    world.delayMs = changed;
    EXPECT_THAT(LinesOf(ORVEX_RESTART_BT_RECODING), Not(Contains("E2 no need to retry sync")));
  }
  world.delayMs = 70;
  EXPECT_THAT(LinesOf(ORVEX_RESTART_BT_RECODING), Contains("E2 no need to retry sync")) << "the third";
  world.delayMs = 60;
  EXPECT_THAT(LinesOf(ORVEX_RESTART_BT_RECODING), Not(Contains("E2 no need to retry sync")));
}

TEST(CorrectedDelay, IsTheBaseLessTheWholeMillisecondsOfTheDifference) {
  EXPECT_EQ(OrvexManager::CorrectedDelay(120, 0.012), 108U);
  EXPECT_EQ(OrvexManager::CorrectedDelay(100, -0.0305), 130U);
  EXPECT_EQ(OrvexManager::CorrectedDelay(100, 0.0305), 70U);
  EXPECT_EQ(OrvexManager::CorrectedDelay(100, 0.0009), 100U);
  EXPECT_EQ(OrvexManager::CorrectedDelay(2000, 1.9995), 1U);
}

TEST(CorrectedDelay, IsZeroBelowZeroAndBeyond32Bits) {
  EXPECT_EQ(OrvexManager::CorrectedDelay(100, 0.1), 0U);
  EXPECT_EQ(OrvexManager::CorrectedDelay(100, 0.25), 0U);
  EXPECT_EQ(OrvexManager::CorrectedDelay(4294967290U, -0.0165), 0U);
}

TEST(CorrectedDelay, OfAHugeBaseIsUnsigned) {
  EXPECT_EQ(OrvexManager::CorrectedDelay(4294967279U, -0.0165), 4294967295U);
  EXPECT_EQ(OrvexManager::CorrectedDelay(4294967295U, 0.0165), 4294967279U);
}

}  // namespace
