// Faults of the sound device while the test sound is played.
#include <signal.h>

#include <gtest/gtest.h>

#include "integration/expectation.h"

namespace orvex::integration {
namespace {

struct DeviceFault {
  const char* name;
  const char* faults;
  Lines logged;  // libasound's error as the service meets it
};

constexpr char kUnderrun[] = "E2 write error: read_size:{d}, cnt:-32, why:Broken pipe";
constexpr char kSuspended[] = "E2 write error: read_size:{d}, cnt:-86, why:Streams pipe error";
constexpr char kDisconnected[] = "E2 write error: read_size:{d}, cnt:-19, why:No such device";

// All before the first tone, so that the rest of the sound still has whole pairs.
const DeviceFault kRecovered[] = {
    {"underrun", R"({"pcm.underrun_at_frame": 3000})", {kUnderrun, "I0 write return : 9824."}},
    {"suspended", R"({"pcm.suspend_at_frame": 3000})", {kSuspended, "I0 write return : 9824."}},
    {"one after the other",
     R"({"pcm.underrun_at_frame": 3000, "pcm.suspend_at_frame": 6000})",
     {kUnderrun, kSuspended, "I0 write return : 9824."}},
};

TEST(Device, ARunGoesOnWithWhatIsLeftAfterAnUnderrunOrASuspension) {
  std::vector<ExpectedRun> runs;
  for (const DeviceFault& row : kRecovered) {
    Expectation expectation = DifferenceApplied();
    expectation.logged = row.logged;
    runs.push_back({{row.name, WithFaults(row.faults), {}, {}}, expectation});
  }
  PerformAndCheck(runs);
}

// Every further chunk fails at once, and the sound ends early.
TEST(Device, ARunWithoutADifferenceFollowsADisconnection) {
  const Observation observation = Perform({"disconnected", WithFaults(R"({"pcm.disconnect_at_frame": 3000})"), {}, {}});
  Expectation expectation = EndedWith("diff_fail", 2);
  expectation.logged = {kDisconnected, kDisconnected};
  Check(observation, expectation);
  EXPECT_LT(TimeBetween(observation, kIsPlaying, "ORVEX_END_SYNC").count(), 2000);
}

// The worker never returns. The process ends all the same, and nothing that was recorded is lost.
TEST(Device, OneThatStallsDoesNotHoldTheProcess) {
  const Observation observation =
      Perform({"stalled", WithFaults(R"({"pcm.stall_at_frame": 3000})"), {SignalAt("buffer: 60", SIGTERM)}, {}});
  Expectation expectation = EndedWith("etc");
  expectation.hostLines = {"E2 orvex-host: a worker thread did not finish within 6 s; ending without it"};
  Check(observation, expectation);
  const auto wait = TimeBetween(observation, "cancel_thread", "orvex-host: a worker{s}");
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
  Expectation expectation = EndedWith("etc");
  expectation.logged = {"E2 Assertion failed", "E2 already thread stop", "I0 Done close"};
  Check(observation, expectation);
}

}  // namespace
}  // namespace orvex::integration
