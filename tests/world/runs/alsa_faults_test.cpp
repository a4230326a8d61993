// The playback device misbehaves while the test sound plays.
#include <gmock/gmock.h>

#include <cerrno>
#include <functional>

#include "world/runs/expected_end.h"
#include "world/runs/good_room.h"

namespace {

using namespace orvex::runs;
using orvex::world::Lane;
using orvex::world::World;

struct Misbehaviour {
  const char* name;
  std::function<void(World& world)> prepare;
  const char* terminate;
  const char* line = nullptr;  // that the log has to hold
  int lines = 1;               // so often
};

void PrintTo(const Misbehaviour& misbehaviour, std::ostream* out) {
  *out << misbehaviour.name;
}

// The device stops by itself at this time, while the sound plays: it begins at 608 ms.
std::function<void(World& world)> StopsAtMs(int milliseconds, snd_pcm_state_t state) {
  return [=](World& world) {
    world.scheduler.At(std::chrono::milliseconds(milliseconds), Lane::kElsewhere, [&world, state] {
      if (world.pcm != nullptr) {
        world.pcm->Fail(state);
      }
    });
  };
}

// What snd_pcm_writei answers the first time, then what resume and recover answer.
std::function<void(World& world)> Answers(long write, std::vector<long> resume, std::vector<long> recover) {
  return [=](World& world) {
    world.answers.Next("snd_pcm_writei", {write});
    world.answers.Next("snd_pcm_resume", resume);
    world.answers.Next("snd_pcm_recover", recover);
  };
}

class AlsaFault : public testing::TestWithParam<Misbehaviour> {};

TEST_P(AlsaFault, EndsAsItHasToAndKeepsAllRules) {
  ServiceRun run;
  UseGoodRoom(run);
  GetParam().prepare(run.world);
  ExpectEnd(run, GetParam().terminate);
  if (GetParam().line != nullptr) {
    EXPECT_EQ(run.world.journal.Count(GetParam().line), GetParam().lines);
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, AlsaFault,
    testing::Values(
        Misbehaviour{"WaitsFiveTimes",
                     [](World& world) { world.answers.Next("snd_pcm_writei", std::vector<long>(5, -EAGAIN)); }, "done",
                     "E2 write wait : read_size:9824, cnt:-11", 5},
        Misbehaviour{"WaitFails",
                     [](World& world) {
                       world.answers.Next("snd_pcm_writei", {-EAGAIN, -EAGAIN});
                       world.answers.Next("snd_pcm_wait", {-EIO, 0});
                     },
                     "done", "> snd_pcm_wait(1000) = -5"},
        Misbehaviour{"IsNeverReadyAndCannotBeWaitedFor",
                     [](World& world) {
                       world.answers.Always("snd_pcm_writei", -EAGAIN);
                       world.answers.Always("snd_pcm_wait", -EIO);
                     },
                     "etc", "I0 m_CancelPlayCB", 0},
        Misbehaviour{"TakesALittleAtATime",
                     [](World& world) {
                       world.answers.Next("snd_pcm_writei", {1, 100, 1228, 0, 1228, 7});
                     },
                     "done", "I0 write return : 1228.", 2},
        Misbehaviour{"UnderrunIsRecovered", Answers(-EPIPE, {}, {0}), "done", "E2 under run. state[4]"},
        Misbehaviour{"UnderrunIsNotRecovered", Answers(-EPIPE, {}, {-EIO}), "done", "E2 write error: drop..."},
        Misbehaviour{"SuspendedAndResumedAtOnce", Answers(-ESTRPIPE, {0}, {}), "done", "> snd_pcm_resume() = 0"},
        Misbehaviour{"SuspendedAndResumedAfterThreeSeconds", Answers(-ESTRPIPE, {-EAGAIN, -EAGAIN, -EAGAIN, 0}, {}),
                     "done", "> sleep(1)", 3},
        Misbehaviour{"SuspendedAndRecovered", Answers(-ESTRPIPE, {-EAGAIN, -ENOSYS}, {0}), "done",
                     "> snd_pcm_recover(-38, 0) = 0"},
        Misbehaviour{"SuspendedAndNotRecovered", Answers(-ESTRPIPE, {-ENOSYS}, {-ENOSYS}), "done",
                     "E2 write error: drop..."},
        Misbehaviour{"SuspendedForEver",
                     [](World& world) {
                       world.answers.Next("snd_pcm_writei", {-ESTRPIPE});
                       world.answers.Always("snd_pcm_resume", -EAGAIN);
                     },
                     "etc", "I0 m_CancelPlayCB", 0},
        Misbehaviour{"GoneFromTheStart", [](World& world) { world.answers.Always("snd_pcm_writei", -ENODEV); },
                     "diff_fail", "E2 write error: drop...", 14},
        Misbehaviour{"GoneWhileItPlays", StopsAtMs(700, SND_PCM_STATE_DISCONNECTED), "diff_fail"},
        // The pair has left the device, but the end of the sound ends the run before it is heard.
        Misbehaviour{"GoneWhileAPairIsOnItsWay", StopsAtMs(900, SND_PCM_STATE_DISCONNECTED), "diff_fail"},
        Misbehaviour{"GoneWhenAPairWasHeard", StopsAtMs(975, SND_PCM_STATE_DISCONNECTED), "done"},
        Misbehaviour{"UnderrunWhileItPlays", StopsAtMs(700, SND_PCM_STATE_XRUN), "done"},
        Misbehaviour{"SuspendedWhileItPlays", StopsAtMs(700, SND_PCM_STATE_SUSPENDED), "done"},
        Misbehaviour{"ReportsNoSizes",
                     [](World& world) {
                       world.pcmLimits.bufferFrames = 0;
                       world.pcmLimits.periodFrames = 0;
                     },
                     "done", "> snd_pcm_sw_params_set_start_threshold(4096) = 0"},
        Misbehaviour{"HasAShortBuffer",
                     [](World& world) {
                       world.pcmLimits.bufferFrames = 256;
                       world.pcmLimits.periodFrames = 64;
                     },
                     "done", "E0 framesize = 4, periodsize = 64, chunkbytes = 2048"},
        Misbehaviour{"HasALongBuffer",
                     [](World& world) {
                       world.pcmLimits.bufferFrames = 48000;
                       world.pcmLimits.periodFrames = 12000;
                     },
                     "done"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
