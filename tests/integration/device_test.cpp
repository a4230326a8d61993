// Faults of the sound device while the test sound is played.
#include <signal.h>

#include <gtest/gtest.h>

#include "integration/expectation.h"

namespace orvex::integration {
namespace {

struct Row {
  const char* name;
  const char* faults;
  Lines workerLines;  // in order, with others in between
};

// All before the first tone, so that the rest of the sound still has whole pairs.
const Row kRecovered[] = {
    {"underrun",
     R"({"pcm.underrun_at_frame": 3000})",
     {"D playOffset = 0, leftLen = *", "F write error: read_size:*, cnt:-32, why:Broken pipe", "F under run. state[4]",
      "D playOffset = 39296, leftLen = *", "I write return : 9824."}},
    {"suspended",
     R"({"pcm.suspend_at_frame": 3000})",
     {"D playOffset = 0, leftLen = *", "F write error: read_size:*, cnt:-86, why:Streams pipe error",
      "D playOffset = 39296, leftLen = *", "I write return : 9824."}},
    {"one after the other",
     R"({"pcm.underrun_at_frame": 3000, "pcm.suspend_at_frame": 6000})",
     {"F write error: read_size:*, cnt:-32, why:Broken pipe", "F under run. state[4]",
      "F write error: read_size:*, cnt:-86, why:Streams pipe error", "I write return : 9824."}},
};

TEST(Device, ARunGoesOnWithWhatIsLeftAfterAnUnderrunOrASuspension) {
  std::vector<Scenario> scenarios;
  for (const Row& row : kRecovered) {
    scenarios.push_back({row.name, WithFaults(row.faults), {}, {}});
  }
  const std::vector<Observation> observations = Perform(scenarios);
  for (std::size_t n = 0; n < observations.size(); ++n) {
    Expectation expectation;
    expectation.runLines =
        ExpectedLog().UpToPlaying().EndedWithDifference().Exit().Destroyed().WorkerCancelled().GetLines();
    expectation.terminate = "done";
    expectation.result = "pass";
    expectation.endRecords = 2;
    expectation.delayMs = std::nullopt;
    Check(observations[n], expectation);
    EXPECT_EQ("", MissingInOrder(LinesOf(observations[n].lines, Theme::kWorker), kRecovered[n].workerLines));
  }
}

// Every further chunk fails at once, and the sound ends early.
TEST(Device, ARunWithoutADifferenceFollowsADisconnection) {
  const Observation observation = Perform({"disconnected", WithFaults(R"({"pcm.disconnect_at_frame": 3000})"), {}, {}});
  Expectation expectation;
  expectation.runLines = ExpectedLog()
                             .UpToPlaying()
                             .Add({"I m_EndPlayerCB", "I m_OnEndWavPlayCallback", "I Destroy", "F snd_pcm_drop failed",
                                   "I Done drop", "I Done close"})
                             .EndedWithoutDifference()
                             .Exit()
                             .Destroyed()
                             .GetLines();
  expectation.terminate = "diff_fail";
  expectation.endRecords = 2;
  Check(observation, expectation);
  EXPECT_EQ("", MissingInOrder(LinesOf(observation.lines, Theme::kWorker),
                               {"F write error: read_size:*, cnt:-19, why:No such device", "F write error: drop...",
                                "D playOffset = 39296, leftLen = *",
                                "F write error: read_size:*, cnt:-19, why:No such device", "F write error: drop..."}));
  EXPECT_LT(TimeBetween(observation, kIsPlaying, "ORVEX_END_SYNC").count(), 2000);
}

// The worker never returns. The process ends all the same, and nothing that was recorded is lost.
TEST(Device, OneThatStallsDoesNotHoldTheProcess) {
  const Observation observation =
      Perform({"stalled", WithFaults(R"({"pcm.stall_at_frame": 3000})"), {SignalAt("buffer: 60", SIGTERM)}, {}});
  Expectation expectation;
  expectation.runLines = ExpectedLog().UpToPlaying().Destroyed().GetLines();
  expectation.terminate = "etc";
  expectation.hostLines = {"F orvex-host: a worker thread did not finish within 6 s; ending without it"};
  Check(observation, expectation);
  const auto wait = TimeBetween(observation, "cancel_thread", "orvex-host: a worker*");
  EXPECT_GE(wait.count(), 5900);
  EXPECT_LT(wait.count(), 10000);
}

// No thread can be had any more, for each takes more memory than is left. Nobody calls back then, and the run goes on
// until something else ends it.
TEST(Device, IsClosedAtTheEndWhenThereIsNoThreadToPlayTheSound) {
#if ORVEX_IS_SANITIZED
  GTEST_SKIP() << "a sanitizer needs more memory, too";
#endif
  const Observation observation = Perform(
      {"no thread",
       WithRoom(RoomWithoutOpticalSound()),
       {{kIsRecording, [](ServiceRun& run) { run.LimitMemory(16 * 1024); }}, SignalAt("Assertion failed", SIGTERM)},
       {},
       "ulimit -s 65536; exec \"$0\""});
  Expectation expectation;
  expectation.runLines = ExpectedLog().UpToPlaying().SoundWithoutWorker().Destroyed().GetLines();
  expectation.terminate = "etc";
  Check(observation, expectation);
}

// What is written, chunk by chunk, is the whole sound.
TEST(Device, GetsEveryByteOfTheSoundOnce) {
  const Observation observation = Perform({"whole sound", WithRoom(RoomWithoutOpticalSound()), {}, {}});
  CheckEnding(observation);
  long long dataBytes = -1;
  long long offset = 0;
  long long size = 0;
  for (const std::string& line : LinesOf(observation.lines, Theme::kWorker)) {
    long long loggedOffset = 0;
    long long left = 0;
    if (std::sscanf(line.c_str(), "I buffer length %lld", &dataBytes) == 1 ||
        std::sscanf(line.c_str(), "D playSize = %lld", &size) == 1) {
      continue;
    }
    if (std::sscanf(line.c_str(), "D playOffset = %lld, leftLen = %lld", &loggedOffset, &left) == 2) {
      offset += size;
      EXPECT_EQ(offset, loggedOffset);
      EXPECT_EQ(dataBytes - offset, left);
    }
  }
  EXPECT_GT(dataBytes, 0);
  EXPECT_EQ(dataBytes, offset + size);
}

}  // namespace
}  // namespace orvex::integration
