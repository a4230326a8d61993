// The delay line against closed forms.
#include "delay/delay_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace orvex::tools {
namespace {

constexpr std::uint32_t kLongest = 96000;  // 2000 ms
constexpr std::uint32_t kFade = 480;       // 10 ms
constexpr double kRateHz = 48000.0;
constexpr double kPi = 3.14159265358979323846;

DelayLine LineOf(std::uint32_t delayFrames) {
  DelayLine line(kLongest);
  line.Begin(delayFrames, kFade);
  return line;
}

// The sound's left channel.
std::vector<float> Play(DelayLine& line, const std::vector<float>& sound) {
  std::vector<float> heard;
  for (const float sample : sound) {
    heard.push_back(line.Next({sample, -sample})[0]);
  }
  return heard;
}

std::vector<float> SineOf(double frequencyHz, std::size_t frames) {
  std::vector<float> sine(frames);
  for (std::size_t i = 0; i < frames; ++i) {
    sine[i] = static_cast<float>(std::sin(2.0 * kPi * frequencyHz * static_cast<double>(i) / kRateHz));
  }
  return sine;
}

// From 1 on: frame n is n.
std::vector<float> Numbers(std::size_t count, float first = 1.0F) {
  std::vector<float> numbers(count);
  for (std::size_t i = 0; i < count; ++i) {
    numbers[i] = first + static_cast<float>(i);
  }
  return numbers;
}

double LargestStep(const std::vector<float>& sound) {
  double step = 0.0;
  for (std::size_t i = 1; i < sound.size(); ++i) {
    step = std::max(step, std::abs(static_cast<double>(sound[i]) - sound[i - 1]));
  }
  return step;
}

class DelayLineOf : public testing::TestWithParam<std::uint32_t> {};

TEST_P(DelayLineOf, DelaysToTheSampleAndIsSilentBefore) {
  DelayLine line = LineOf(GetParam());
  const std::vector<float> numbers = Numbers(2 * kLongest);
  const std::vector<float> heard = Play(line, numbers);
  std::vector<float> expected(GetParam(), 0.0F);
  expected.insert(expected.end(), numbers.begin(), numbers.end() - GetParam());
  EXPECT_EQ(heard, expected);
}

INSTANTIATE_TEST_SUITE_P(Frames, DelayLineOf, testing::Values(0, 1, 4800, kLongest));

TEST(DelayLine, KeepsTheChannelsApart) {
  DelayLine line = LineOf(2);
  line.Next({0.25F, -0.5F});
  line.Next({});
  EXPECT_EQ(line.Next({}), (DelayLine::Frame{0.25F, -0.5F}));
}

TEST(DelayLine, ALongerDelayThanTheLongestIsTheLongest) {
  DelayLine line = LineOf(kLongest + 1);
  const std::vector<float> heard = Play(line, Numbers(kLongest + 1));
  EXPECT_EQ(heard[kLongest - 1], 0.0F);
  EXPECT_EQ(heard[kLongest], 1.0F);
}

struct Change {
  std::uint32_t from;
  std::uint32_t to;
};

// With "-: frames", as gtest names a row.
void PrintTo(const Change& change, std::ostream* out) {
  *out << change.from << " to " << change.to << " frames";
}

class DelayLineChange : public testing::TestWithParam<Change> {};

TEST_P(DelayLineChange, TakesTenMillisecondsAndIsExactAfterwards) {
  const auto [from, to] = GetParam();
  DelayLine line = LineOf(from);
  Play(line, Numbers(2 * kLongest));
  line.SetDelay(to);
  const float now = 2.0F * kLongest;
  const std::vector<float> heard = Play(line, Numbers(2 * kFade, now + 1.0F));
  const auto exact = Numbers(kFade, now + 1.0F + static_cast<float>(kFade) - static_cast<float>(to));
  EXPECT_EQ(std::vector<float>(heard.begin() + kFade, heard.end()), exact);
  const auto oldest = now + 1.0F - static_cast<float>(std::max(from, to));
  EXPECT_GE(*std::min_element(heard.begin(), heard.end()), oldest);
}

// The largest step between two frames of a sine of frequency f and height 1 is 2·sin(π·f/48000). Two of them that are a
// phase of φ apart differ by at most 2·sin(φ/2), and the fade takes at most 1.5/480 of that with each frame: the sound
// has to catch up or to wait, by whatever law.
TEST_P(DelayLineChange, MakesNoStepAboveThoseOfTheSineThatPlaysAndOfTheFade) {
  for (const double frequencyHz : {100.0, 441.0, 997.0, 3001.0, 17000.0}) {
    DelayLine line = LineOf(GetParam().from);
    const std::vector<float> sine = SineOf(frequencyHz, 2 * kLongest);
    std::vector<float> heard;
    for (std::size_t i = 0; i < sine.size(); ++i) {
      // The line is full when the change comes.
      if (i == kLongest + 4800) {
        line.SetDelay(GetParam().to);
      }
      heard.push_back(line.Next({sine[i], sine[i]})[0]);
    }
    heard.erase(heard.begin(), heard.begin() + kLongest + 1);
    const double distance = static_cast<double>(GetParam().from) - GetParam().to;
    const double apart = 2.0 * std::abs(std::sin(kPi * frequencyHz * distance / kRateHz));
    const double allowed = 2.0 * std::sin(kPi * frequencyHz / kRateHz) + 1.5 / kFade * apart;
    constexpr double kRounding = 1e-6;
    EXPECT_LE(LargestStep(heard), allowed + kRounding) << frequencyHz << " Hz";
  }
}

INSTANTIATE_TEST_SUITE_P(Changes, DelayLineChange,
                         testing::Values(Change{0, 4800}, Change{4800, 0}, Change{1, 2}, Change{4800, 4777},
                                         Change{1920, kLongest}, Change{kLongest, 0}));

// Sounds that are opposed cancel out on the way from one to the other; a constant sound that changes its sign is one.
TEST(DelayLine, LevelIsBelowHalfForLessThanFiveMillisecondsOfAChange) {
  DelayLine line = LineOf(4800);
  Play(line, std::vector<float>(4800, 1.0F));
  Play(line, std::vector<float>(4800 - kFade, -1.0F));
  line.SetDelay(0);
  const std::vector<float> heard = Play(line, std::vector<float>(kFade, -1.0F));
  const auto quiet = std::count_if(heard.begin(), heard.end(), [](float level) { return std::abs(level) < 0.5F; });
  EXPECT_NEAR(static_cast<double>(quiet) / kFade, 0.347, 0.005);  // where 3t² - 2t³ is between 1/4 and 3/4
  EXPECT_EQ(heard.back(), -1.0F);
}

TEST(DelayLine, EqualSoundsKeepTheirLevelDuringAChange) {
  DelayLine line = LineOf(0);
  Play(line, std::vector<float>(9600, 0.5F));
  line.SetDelay(4800);
  EXPECT_THAT(Play(line, std::vector<float>(kFade, 0.5F)), testing::Each(0.5F));
}

TEST(DelayLine, AChangeDuringAChangeComesAfterIt) {
  DelayLine line = LineOf(0);
  Play(line, Numbers(kLongest));
  line.SetDelay(1000);
  Play(line, Numbers(kFade / 2, kLongest + 1.0F));
  line.SetDelay(2000);
  line.SetDelay(3000);
  const std::vector<float> heard = Play(line, Numbers(2 * kFade, kLongest + kFade / 2 + 1.0F));
  const float first = kLongest + kFade / 2 + 1.0F;
  EXPECT_EQ(heard[kFade / 2 - 1], first + kFade / 2 - 1 - 1000);
  EXPECT_EQ(heard[kFade / 2 + kFade - 1], first + kFade / 2 + kFade - 1 - 3000);
}

TEST(DelayLine, BeginningAgainForgetsTheSoundAndTakesTheDelayAtOnce) {
  DelayLine line = LineOf(1000);
  Play(line, Numbers(kLongest));
  line.Begin(10, kFade);
  std::vector<float> expected(10, 0.0F);
  expected.insert(expected.end(), {1.0F, 2.0F, 3.0F});
  EXPECT_EQ(Play(line, Numbers(13)), expected);
}

TEST(DelayLine, FramesThatNeverCameAreSilenceAndKeepTheOthersPlaces) {
  DelayLine line = LineOf(4);
  EXPECT_EQ(Play(line, {1, 2, 3}), (std::vector<float>{0, 0, 0}));
  line.Move(2);  // 4 and 5 are lost, and 1 would have been heard meanwhile
  EXPECT_EQ(Play(line, {6, 7, 8, 9, 10}), (std::vector<float>{2, 3, 0, 0, 6}));
}

TEST(DelayLine, FramesThatComeTwiceTakeEachOthersPlace) {
  DelayLine line = LineOf(2);
  Play(line, {1, 2, 3, 4});
  line.Move(-2);
  EXPECT_EQ(Play(line, {13, 14, 15, 16}), (std::vector<float>{1, 2, 13, 14}));
}

TEST(DelayLine, AGapLongerThanTheLineLeavesNothingInIt) {
  DelayLine line = LineOf(kLongest);
  Play(line, Numbers(kLongest));
  line.Move(10 * std::int64_t{kLongest});
  EXPECT_THAT(Play(line, std::vector<float>(kLongest, 1.0F)), testing::Each(0.0F));
}

}  // namespace
}  // namespace orvex::tools
