// A main loop that is late: blocks go on arriving until it stops the recording, and the first result stands all the
// same. That a run has one result for a recording, and applies it, is a rule of every run.
#include <gmock/gmock.h>

#include "support/wave_file.h"
#include "world/runs/good_room.h"
#include "world/runs/run_rules.h"
#include "world/runs/scripted_remote.h"

namespace {

using namespace orvex::runs;
using orvex::sim::RoomConfig;
using orvex::world::Time;
using testing::IsEmpty;

constexpr int kLatenessesMs[] = {0, 10, 17, 33, 50, 66, 100, 150, 200};

Time Milliseconds(int milliseconds) {
  return std::chrono::milliseconds(milliseconds);
}

class LateMainLoop : public testing::TestWithParam<int> {
protected:
  int LatenessMs() const { return GetParam(); }
};

// 17 kHz in 50, 19 kHz in 52: the first result. Then what a room may still hold: a weaker 19 kHz, which is a sequence
// error and a first tone, a 17 kHz that pairs with it, and another pair.
TEST_P(LateMainLoop, AppliesTheFirstOfSeveralResults) {
  const orvex::test::SilentWave sound(0.5);
  ServiceRun run(sound.Path());
  PrepareGoodRun(run);
  ScriptedRemote remote(run.world);
  const std::map<int, Heard> script = {{50, Heard::k17kHz}, {52, Heard::k19kHz},     {53, Heard::kWeak19kHz},
                                       {54, Heard::k17kHz}, {55, Heard::kWeak19kHz}, {58, Heard::k17kHz}};
  for (const auto& [block, heard] : script) {
    remote.Hear(block, heard);
  }
  run.world.scheduler.MakeMainLoopLate(Milliseconds(LatenessMs()));
  ASSERT_TRUE(run.Start());
  ASSERT_TRUE(run.ToEnd());
  EXPECT_THAT(CheckRun(run), IsEmpty());
  EXPECT_EQ(run.world.delayMs, 100U - 33U);
  EXPECT_EQ(run.world.journal.Count("E0 completed calculation of delay"), 1);
}

TEST_P(LateMainLoop, AppliesTheFirstResultInRoomsThatReverberate) {
  int found = 0;
  for (std::uint64_t seed = 1; seed <= 12; ++seed) {
    ServiceRun run;
    PrepareGoodRun(run);
    run.world.delayMs = 400;
    RoomConfig room;
    room.optical.latencyMs = 60.0 + 30.0 * static_cast<double>(seed);
    room.tv.latencyMs = 480.0;
    room.tv.rt60S = room.optical.rt60S = 0.5;
    room.tv.directToReverberantDb = room.optical.directToReverberantDb = 0.0;
    room.seed = seed;
    run.world.UseRoom(room);
    run.world.scheduler.MakeMainLoopLate(Milliseconds(LatenessMs()));
    ASSERT_TRUE(run.Start());
    ASSERT_TRUE(run.ToEnd());
    SCOPED_TRACE("seed " + std::to_string(seed));
    EXPECT_THAT(CheckRun(run), IsEmpty());
    found += run.world.delayMs != run.Before().delayMs ? 1 : 0;
  }
  EXPECT_GT(found, 8) << "hardly a run finds anything";
}

INSTANTIATE_TEST_SUITE_P(ByMs, LateMainLoop, testing::ValuesIn(kLatenessesMs));

}  // namespace
