// A device that is suspended while it is written to: how long the player waits for it, and when it gives up.
#include <cerrno>

#include "unit/service/sound_support.h"

namespace {

using namespace orvex::test;
using orvex::world::Time;
using testing::ElementsAreArray;

// What a suspended device answers to resume and recover, and the lines from there to the second chunk.
struct Suspension {
  const char* name;
  std::vector<long> resumes;
  std::vector<long> recovers;
  Texts lines;
  int pausesS;
  bool isDropped;
};

void PrintTo(const Suspension& suspension, std::ostream* out) {
  *out << suspension.name;
}

std::string NameOfSuspension(const testing::TestParamInfo<Suspension>& info) {
  return info.param.name;
}

class AlsaSuspend : public TwoChunks, public testing::WithParamInterface<Suspension> {};

TEST_P(AlsaSuspend, LosesTheRestOfItsChunkOnly) {
  const Suspension& suspension = GetParam();
  world.answers.Next("snd_pcm_writei", {12, -ESTRPIPE});
  world.answers.Next("snd_pcm_resume", suspension.resumes);
  world.answers.Next("snd_pcm_recover", suspension.recovers);
  const Time begin = world.scheduler.Now();
  EXPECT_THAT(Play(), ElementsAreArray(Concat({FirstChunk(WriteOf(32, 12)),
                                               WriteOf(20, -86),
                                               {"E2 write error: read_size:20, cnt:-86, why:Streams pipe error"},
                                               suspension.lines,
                                               suspension.isDropped ? SecondChunkAfterPrepare() : SecondChunk()})));
  std::vector<std::int16_t> expected = SamplesIn(sound, 0, 48);
  const std::vector<std::int16_t> second = SamplesIn(sound, 128, 256);
  expected.insert(expected.end(), second.begin(), second.end());
  EXPECT_EQ(world.samplesTaken, expected);
  EXPECT_EQ(std::chrono::duration_cast<std::chrono::seconds>(world.scheduler.Now() - begin).count(),
            suspension.pausesS);
}

const Texts kDrop = DeviceIsDropped();
const Texts kAgain = {"> snd_pcm_resume() = -11", "> sleep(1)"};

INSTANTIATE_TEST_SUITE_P(
    All, AlsaSuspend,
    testing::Values(Suspension{"ResumesAtOnce", {}, {}, {"> snd_pcm_resume() = 0"}, 0, false},
                    Suspension{"ResumesWithAPositiveAnswer", {1}, {}, {"> snd_pcm_resume() = 1"}, 0, false},
                    Suspension{"ResumesAfterThreePauses",
                               {-EAGAIN, -EAGAIN, -EAGAIN},
                               {},
                               Concat({kAgain, kAgain, kAgain, {"> snd_pcm_resume() = 0"}}),
                               3,
                               false},
                    Suspension{"CannotResumeButRecovers",
                               {-ENOSYS},
                               {0},
                               {"> snd_pcm_resume() = -38", "> snd_pcm_recover(-38, 0) = 0"},
                               0,
                               false},
                    Suspension{"RecoversWithAPositiveAnswer",
                               {-ENOSYS},
                               {1},
                               {"> snd_pcm_resume() = -38", "> snd_pcm_recover(-38, 0) = 1"},
                               0,
                               false},
                    Suspension{"RecoversFromWhatResumeAnsweredLast",
                               {-EAGAIN, -EAGAIN, -EPIPE},
                               {},
                               Concat({kAgain, kAgain, {"> snd_pcm_resume() = -32", "> snd_pcm_recover(-32, 0) = 0"}}),
                               2,
                               false},
                    Suspension{"CannotResumeAndIsDropped",
                               {-ENOSYS},
                               {},
                               Concat({{"> snd_pcm_resume() = -38", "> snd_pcm_recover(-38, 0) = -38"}, kDrop}),
                               0,
                               true},
                    Suspension{"CannotResumeAfterAPauseAndIsDropped",
                               {-EAGAIN, -EIO},
                               {},
                               Concat({kAgain, {"> snd_pcm_resume() = -5", "> snd_pcm_recover(-5, 0) = -5"}, kDrop}),
                               1,
                               true}),
    NameOfSuspension);

}  // namespace
