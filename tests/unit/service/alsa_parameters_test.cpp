// Configuring the sound device: each step that it may refuse, and sizes that it does not report.
#include <algorithm>
#include <cerrno>

#include "unit/service/sound_support.h"

namespace {

using namespace orvex::test;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Not;

const Texts kHardwareSteps = {"snd_pcm_hw_params_any",
                              "snd_pcm_hw_params_set_access",
                              "snd_pcm_hw_params_set_format",
                              "snd_pcm_hw_params_set_channels",
                              "snd_pcm_hw_params_set_rate",
                              "snd_pcm_hw_params_set_buffer_time_near",
                              "snd_pcm_hw_params_set_period_time_near",
                              "snd_pcm_hw_params_get_buffer_size",
                              "snd_pcm_hw_params_get_period_size",
                              "snd_pcm_hw_params"};
const Texts kSoftwareSteps = {"snd_pcm_sw_params_current", "snd_pcm_sw_params_set_avail_min",
                              "snd_pcm_sw_params_set_start_threshold", "snd_pcm_sw_params_set_stop_threshold",
                              "snd_pcm_sw_params"};

// A step that does not answer 0, and the buffer size in frames that was read back before it.
struct Step {
  const char* function;
  long answer;
  int bufferFrames;
};

void PrintTo(const Step& step, std::ostream* out) {
  *out << step.function << " = " << step.answer;
}

std::string NameOfStep(const testing::TestParamInfo<Step>& info) {
  return std::string(info.param.function) + (info.param.answer > 0 ? "_positive" : "_negative");
}

// The names of the called functions that begin with `beginning`, in the order of the calls.
Texts CallsOf(const Texts& lines, const std::string& beginning) {
  Texts names;
  for (const std::string& line : lines) {
    if (line.compare(0, beginning.size() + 2, "> " + beginning) == 0) {
      names.push_back(line.substr(2, line.find('(') - 2));
    }
  }
  return names;
}

Texts UpTo(const Texts& steps, const std::string& last) {
  return Texts(steps.begin(), std::find(steps.begin(), steps.end(), last) + 1);
}

Texts SoftwareLines(int availMin, int start, int stop) {
  return {"> snd_pcm_sw_params_set_avail_min(" + std::to_string(availMin) + ") = 0",
          "> snd_pcm_sw_params_set_start_threshold(" + std::to_string(start) + ") = 0",
          "> snd_pcm_sw_params_set_stop_threshold(" + std::to_string(stop) + ") = 0"};
}

// With the television's device in place of the small one.
class AlsaParameters : public AlsaTest, public testing::WithParamInterface<Step> {
protected:
  AlsaParameters() { world.pcmLimits = {}; }
};

using AlsaHardwareStep = AlsaParameters;

TEST_P(AlsaHardwareStep, ThatIsRefusedEndsTheHardwareConfigurationOnly) {
  const Step& step = GetParam();
  world.answers.Next(step.function, {step.answer});
  const Texts lines = Open();
  EXPECT_TRUE(opened);
  EXPECT_THAT(CallsOf(lines, "snd_pcm_hw_"), ElementsAreArray(UpTo(kHardwareSteps, step.function)));
  const auto failure = std::find(lines.begin(), lines.end(), "E2 Assertion failed");
  ASSERT_GE(lines.end() - failure, 3);
  EXPECT_EQ(failure[-1].compare(2, std::strlen(step.function), step.function), 0) << failure[-1];
  EXPECT_EQ(failure[1], "I0 InitHwParam ok");
  EXPECT_EQ(failure[2].compare(0, 27, "> snd_pcm_sw_params_current"), 0) << failure[2];
  EXPECT_THAT(lines, Contains("I0 InitSwParam ok"));
  EXPECT_THAT(lines, Contains("> snd_pcm_drop() = -5"));
  EXPECT_THAT(CallsOf(lines, "snd_pcm_frames_to_bytes"), ElementsAre("snd_pcm_frames_to_bytes"));
}

// A device that takes software parameters all the same is given what was read back before the step.
TEST_P(AlsaHardwareStep, ThatIsRefusedLeavesWhatWasReadBackBefore) {
  const Step& step = GetParam();
  world.answers.Next(step.function, {step.answer});
  world.answers.Next("snd_pcm_sw_params_current", {0});
  const Texts calls = SoftwareLines(0, step.bufferFrames / 2, step.bufferFrames);
  const Texts lines = From(Open(), calls.front());
  EXPECT_THAT(FirstOf(lines, 3), ElementsAreArray(calls));
}

TEST_P(AlsaHardwareStep, ThatIsRefusedLeavesADeviceThatPlaysNothing) {
  world.answers.Next(GetParam().function, {GetParam().answer});
  Open();
  EXPECT_THAT(Play(Sound(64)), ElementsAre("I0 period size[0].", "E0 framesize = 4, periodsize = 0, chunkbytes = 0",
                                           "E2 Assertion failed"));
}

INSTANTIATE_TEST_SUITE_P(All, AlsaHardwareStep,
                         testing::Values(Step{"snd_pcm_hw_params_any", -EIO, 0},
                                         Step{"snd_pcm_hw_params_set_access", -EINVAL, 0},
                                         Step{"snd_pcm_hw_params_set_format", -EINVAL, 0},
                                         Step{"snd_pcm_hw_params_set_channels", -EINVAL, 0},
                                         Step{"snd_pcm_hw_params_set_rate", -EINVAL, 0},
                                         Step{"snd_pcm_hw_params_set_buffer_time_near", -EINVAL, 0},
                                         Step{"snd_pcm_hw_params_set_buffer_time_near", 1, 0},
                                         Step{"snd_pcm_hw_params_set_period_time_near", -EINVAL, 0},
                                         Step{"snd_pcm_hw_params_set_period_time_near", 1, 0},
                                         Step{"snd_pcm_hw_params_get_buffer_size", -EINVAL, 0},
                                         Step{"snd_pcm_hw_params_get_period_size", -EINVAL, 4915}),
                         NameOfStep);

using AlsaTolerantStep = AlsaParameters;

TEST_P(AlsaTolerantStep, ThatAnswersAPositiveNumberHasWorked) {
  world.answers.Next(GetParam().function, {1});
  const Texts lines = Open();
  EXPECT_EQ(world.journal.CountStartingWith("E"), 0);
  EXPECT_THAT(CallsOf(lines, "snd_pcm_hw_"), ElementsAreArray(kHardwareSteps));
  EXPECT_THAT(CallsOf(lines, "snd_pcm_sw_"), ElementsAreArray(kSoftwareSteps));
}

INSTANTIATE_TEST_SUITE_P(
    All, AlsaTolerantStep,
    testing::Values(Step{"snd_pcm_hw_params_any", 1, 0}, Step{"snd_pcm_hw_params_set_access", 1, 0},
                    Step{"snd_pcm_hw_params_set_format", 1, 0}, Step{"snd_pcm_hw_params_set_channels", 1, 0},
                    Step{"snd_pcm_hw_params_set_rate", 1, 0}, Step{"snd_pcm_hw_params_get_buffer_size", 1, 0},
                    Step{"snd_pcm_hw_params_get_period_size", 1, 0}, Step{"snd_pcm_hw_params", 1, 0},
                    Step{"snd_pcm_sw_params_current", 1, 0}, Step{"snd_pcm_sw_params_set_avail_min", 1, 0},
                    Step{"snd_pcm_sw_params_set_start_threshold", 1, 0},
                    Step{"snd_pcm_sw_params_set_stop_threshold", 1, 0}, Step{"snd_pcm_sw_params", 1, 0}),
    NameOfStep);

using AlsaSoftwareStep = AlsaParameters;

TEST_P(AlsaSoftwareStep, ThatIsRefusedEndsTheSoftwareConfigurationOnly) {
  const Step& step = GetParam();
  world.answers.Next(step.function, {step.answer});
  const Texts lines = Open();
  EXPECT_TRUE(opened);
  EXPECT_THAT(CallsOf(lines, "snd_pcm_sw_"), ElementsAreArray(UpTo(kSoftwareSteps, step.function)));
  EXPECT_THAT(From(lines, "E2 Assertion failed"),
              ElementsAre("E2 Assertion failed", "I0 InitSwParam ok", "> snd_pcm_drop() = 0",
                          "> snd_pcm_frames_to_bytes(1) = 4", "I0 frame size =  4"));
}

INSTANTIATE_TEST_SUITE_P(All, AlsaSoftwareStep,
                         testing::Values(Step{"snd_pcm_sw_params_current", -EIO, 0},
                                         Step{"snd_pcm_sw_params_set_avail_min", -EINVAL, 0},
                                         Step{"snd_pcm_sw_params_set_start_threshold", -EINVAL, 0},
                                         Step{"snd_pcm_sw_params_set_stop_threshold", -EINVAL, 0},
                                         Step{"snd_pcm_sw_params", -EINVAL, 0}),
                         NameOfStep);

TEST_F(AlsaParameters, ThatCannotBeInstalledAreReportedWithTheReason) {
  world.answers.Next("snd_pcm_hw_params", {-EBUSY});
  const Texts lines = From(Open(), "> snd_pcm_hw_params() = -16");
  ASSERT_GE(lines.size(), 4U);
  EXPECT_EQ(lines[1], "E2 snd_pcm_hw_params err: Device or resource busy");
  EXPECT_EQ(lines[2], "E2 Assertion failed");
  EXPECT_EQ(lines[3], "I0 InitHwParam ok");
  EXPECT_TRUE(opened);
}

TEST_F(AlsaParameters, ThatCannotBeInstalledLeaveTheChunkSizeThatWasReadBack) {
  world.pcmLimits = SmallDevice();
  world.answers.Next("snd_pcm_hw_params", {-EBUSY});
  world.answers.Next("snd_pcm_frames_to_bytes", {4});
  Open();
  EXPECT_THAT(Play(Sound(8)), Contains("E0 framesize = 4, periodsize = 4, chunkbytes = 128"));
  EXPECT_TRUE(world.journal.Has("> snd_pcm_writei(2) = -5"));
}

struct Sizes {
  unsigned long buffer, period;  // as the device reports them
  int bufferInUse, periodInUse;
};

// The log shows the sizes that the device reported, the thresholds those that are used.
TEST_F(AlsaParameters, HaveDefaultsForSizesThatTheDeviceDoesNotReport) {
  for (const Sizes& sizes : {Sizes{0, 0, 8192, 2048}, Sizes{0, 1000, 8192, 1000}, Sizes{4001, 0, 4001, 2048},
                             Sizes{1, 1, 1, 1}, Sizes{96000, 24000, 96000, 24000}}) {
    world.pcmLimits = {70000, 20000, sizes.buffer, sizes.period};
    const Texts lines = Open();
    const Texts reported = From(lines, "I0 buffer time:70000, period time:20000");
    ASSERT_GE(reported.size(), 3U);
    EXPECT_EQ(reported[1],
              "I0 buffer size:" + std::to_string(sizes.buffer) + ", period size:" + std::to_string(sizes.period));
    EXPECT_EQ(reported[2], "> snd_pcm_hw_params() = 0");
    for (const std::string& call : SoftwareLines(sizes.periodInUse, sizes.bufferInUse / 2, sizes.bufferInUse)) {
      EXPECT_THAT(lines, Contains(call));
    }
    audio.Destroy();
  }
}

TEST_F(AlsaParameters, ThatAreNotReportedPlayInDefaultChunks) {
  world.pcmLimits = {70000, 20000, 0, 0};
  Open();
  const Texts lines = Play(Sound(65536));
  EXPECT_THAT(lines, ElementsAreArray(
                         Concat({{"I0 period size[2048].", "E0 framesize = 4, periodsize = 2048, chunkbytes = 65536"},
                                 ChunkIsCopied(0, 65536, 65536),
                                 DeviceIsPrepared(),
                                 ChunkIsWritten(16384)})));
}

// Destroy() keeps the buffer and period sizes and clears the chunk size.
TEST_F(AlsaParameters, OfAnEarlierOpenAreUsedWhenTheNextCannotReadThemBack) {
  Open();
  audio.Destroy();
  world.answers.Next("snd_pcm_hw_params_any", {-EIO});
  world.answers.Next("snd_pcm_sw_params_current", {0});
  const Texts lines = Open();
  for (const std::string& call : SoftwareLines(1228, 2457, 4915)) {
    EXPECT_THAT(lines, Contains(call));
  }
  EXPECT_THAT(Play(Sound(8)), Contains("I0 period size[0]."));
  EXPECT_THAT(world.journal.Calls(), Not(Contains("> snd_pcm_writei(2) = 2")));
}

}  // namespace
