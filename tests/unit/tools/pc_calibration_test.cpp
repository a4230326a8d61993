// The steps of a calibration in rooms made of sines and noise, and what it says of those that fail.
#include "pc/calibration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include "options/errors.h"
#include "unit/tools/fine_recordings.h"

namespace orvex::tools {
namespace {

using std::chrono::milliseconds;
using testing::DoubleNear;
using testing::HasSubstr;
using testing::Optional;

constexpr double kExactMs = 0.05;
constexpr double kMaximumMs = 2000.0;
constexpr double kSecondPairMs = 200.0 + 640.0;

// A room in which the delayed output is late by `wayMs` and the line's delay.
class FakeRoom : public LivingRoom {
public:
  double wayMs = 0.0;
  double delayMs = 0.0;
  std::optional<double> servicesMs;  // the delay that the service sets after the first pair
  fine::HeardSound sound;
  VoiceSamples quiet = fine::MakeNoise(300.0, 25.0);
  RunReport report;
  ServiceEnding ending;
  std::function<void()> beforePlaying = [] {};
  bool isDelayGone = false;
  std::vector<double> delaysSet = {};
  std::uint64_t losses = 0;
  milliseconds listeningTakes{0};  // each of them, of the service or not
  milliseconds now{0};

  FakeRoom() {
    ending.exitCode = 0;
    report.terminate = kFoundDifference;
  }

  double GetDelayMs() override {
    if (isDelayGone) {
      throw CommandError("orvex-delay is not running");
    }
    return delayMs;
  }
  void SetDelayMs(double wanted) override {
    GetDelayMs();
    delayMs = wanted;
    delaysSet.push_back(wanted);
  }
  VoiceSamples Prepare() override { return quiet; }
  ServiceRun RunService() override {
    ServiceRun run;
    now += listeningTakes;
    run.heard = Hear();
    run.changedAt = run.heard.size();
    if (servicesMs) {
      const auto changedAt = static_cast<std::size_t>((kSecondPairMs - 200.0) * 1e-3 * kVoiceRateHz);
      delayMs = *servicesMs;
      const VoiceSamples later = Hear();
      std::copy(later.begin() + static_cast<std::ptrdiff_t>(changedAt), later.end(),
                run.heard.begin() + static_cast<std::ptrdiff_t>(changedAt));
      run.changedAt = changedAt;
    }
    run.report = report;
    run.ending = ending;
    return run;
  }
  VoiceSamples PlayAndListen() override {
    beforePlaying();
    now += listeningTakes;
    return Hear();
  }

  std::uint64_t CountLosses() override { return losses; }

private:
  VoiceSamples Hear() {
    sound.lengthMs = 3300.0;
    sound.differenceMs = wayMs + delayMs;
    ++sound.seed;
    return fine::MakeRecording(sound);
  }
};

Calibration CalibrateIn(FakeRoom& room, bool coarse = false) {
  CalibrationOptions options;
  options.coarse = coarse;
  options.maximumDelayMs = kMaximumMs;
  options.now = [&room] { return std::chrono::steady_clock::time_point(room.now); };
  return Calibrate(room, options);
}

TEST(PcCalibration, SetsTheDelayToATenthOfAMillisecondByTheFineReading) {
  FakeRoom room;
  room.wayMs = -183.24;
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kAligned, result.verdict) << result.words;
  EXPECT_THAT(result.beforeMs, Optional(DoubleNear(-183.24, kExactMs)));
  EXPECT_THAT(room.delaysSet, testing::ElementsAre(183.2));
  EXPECT_THAT(result.appliedMs, Optional(183.2));
  EXPECT_THAT(result.afterMs, Optional(DoubleNear(-0.04, kExactMs)));
  ASSERT_TRUE(result.intervalMs);
  EXPECT_LT(result.intervalMs->low, *result.afterMs);
  EXPECT_GT(result.intervalMs->high, *result.afterMs);
  EXPECT_GT(result.level17Db, 40.0);
  EXPECT_GT(result.level19Db, 40.0);
}

TEST(PcCalibration, KnowsTheDifferenceBeforeAlsoWhenTheServiceChangesTheDelayInTheMiddleOfTheSound) {
  for (const double wayMs : {-183.24, -20.0, 150.0}) {
    FakeRoom room;
    room.delayMs = 200.0;
    room.wayMs = wayMs;
    room.servicesMs = 200.0 - (wayMs + 200.0) + 7.0;
    room.report.differenceS = (wayMs + 200.0 - 7.0) * 1e-3;
    const Calibration result = CalibrateIn(room);
    if (wayMs < 0.0) {
      EXPECT_EQ(PcVerdict::kAligned, result.verdict) << wayMs << result.words;
      EXPECT_THAT(result.appliedMs, Optional(DoubleNear(-wayMs, 0.06))) << wayMs;
    }
    EXPECT_THAT(result.beforeMs, Optional(DoubleNear(wayMs + 200.0, kExactMs))) << wayMs;
    EXPECT_THAT(result.coarseMs, Optional(DoubleNear(wayMs + 193.0, 1e-9))) << wayMs;
  }
}

TEST(PcCalibration, LeavesTheServicesDelayWhenThatIsAskedFor) {
  FakeRoom room;
  room.wayMs = -100.0;
  room.servicesMs = 109.0;
  const Calibration result = CalibrateIn(room, true);
  EXPECT_EQ(PcVerdict::kAligned, result.verdict) << result.words;
  EXPECT_EQ(109.0, room.delayMs);
  EXPECT_THAT(result.afterMs, Optional(DoubleNear(9.0, kExactMs)));
}

TEST(PcCalibration, SaysWhatToSwapWhenTheDelayedOutputIsTheLaterOne) {
  FakeRoom room;
  room.wayMs = 40.0;
  room.delayMs = 10.0;
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kOutOfRange, result.verdict);
  EXPECT_THAT(result.words, HasSubstr("swap reference and delayed"));
  EXPECT_THAT(result.words, HasSubstr("40.0 ms"));
  EXPECT_THAT(result.beforeMs, Optional(DoubleNear(50.0, kExactMs)));
  EXPECT_EQ(10.0, room.delayMs);
}

TEST(PcCalibration, ADifferenceThatNoDelayCorrectsIsAlignedWhenItIsSmall) {
  FakeRoom room;
  room.wayMs = 1.0;
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kAligned, result.verdict) << result.words;
  EXPECT_EQ(0.0, room.delayMs);
}

TEST(PcCalibration, SaysThatMoreDelayIsNeededThanThereIs) {
  FakeRoom room;
  room.wayMs = -2150.0;
  room.delayMs = 1900.0;
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kOutOfRange, result.verdict);
  EXPECT_THAT(result.words, HasSubstr("2150.0 ms, at most 2000 ms"));
  EXPECT_EQ(1900.0, room.delayMs);
}

TEST(PcCalibration, PutsTheOldDelayBackWhenTheSecondListeningDoesNotAgree) {
  FakeRoom room;
  room.wayMs = -60.0;
  room.delayMs = 20.0;
  room.beforePlaying = [&] { room.wayMs = -90.0; };
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kWorse, result.verdict);
  EXPECT_THAT(result.words, HasSubstr("-30.0 ms remain with a delay of 60.0 ms"));
  EXPECT_EQ(20.0, room.delayMs);
  EXPECT_THAT(result.appliedMs, Optional(20.0));
  EXPECT_THAT(result.afterMs, Optional(DoubleNear(-30.0, kExactMs)));
}

TEST(PcCalibration, FollowsOutputsThatStillWanderAndListensAgain) {
  FakeRoom room;
  room.wayMs = -60.0;
  room.beforePlaying = [&] { room.wayMs = std::max(-61.2, room.wayMs - 1.2); };
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kAligned, result.verdict) << result.words;
  EXPECT_THAT(room.delaysSet, testing::ElementsAre(60.0, 61.2));
  EXPECT_THAT(result.appliedMs, Optional(61.2));
  EXPECT_THAT(result.afterMs, Optional(DoubleNear(0.0, kExactMs)));
}

TEST(PcCalibration, LeavesOutputsThatDoNotSettleAtWhatIsStillAligned) {
  FakeRoom room;
  room.wayMs = -60.0;
  room.beforePlaying = [&] { room.wayMs -= 1.2; };
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kAligned, result.verdict) << result.words;
  EXPECT_THAT(room.delaysSet, testing::ElementsAre(60.0, 61.2, 62.4));
  EXPECT_THAT(result.afterMs, Optional(DoubleNear(-1.2, kExactMs)));
}

TEST(PcCalibration, BeginsNoListeningThatWouldEndAfterTwelveSeconds) {
  struct Row {
    milliseconds listeningTakes;
    std::vector<double> delaysSet;
    double durationS;
  };
  const Row rows[] = {{milliseconds(3000), {60.0, 61.2, 62.4}, 12.0},
                      {milliseconds(3001), {60.0, 61.2}, 9.003},
                      {milliseconds(4000), {60.0, 61.2}, 12.0},
                      {milliseconds(4001), {60.0}, 8.002}};
  for (const Row& row : rows) {
    FakeRoom room;
    room.wayMs = -60.0;
    room.beforePlaying = [&] { room.wayMs -= 1.2; };
    room.listeningTakes = row.listeningTakes;
    const Calibration result = CalibrateIn(room);
    EXPECT_EQ(PcVerdict::kAligned, result.verdict) << result.words;
    EXPECT_EQ(row.delaysSet, room.delaysSet);
    EXPECT_DOUBLE_EQ(row.durationS, result.durationS);
  }
}

TEST(PcCalibration, DoesNotFollowOutputsThatHaveLostSound) {
  FakeRoom room;
  room.wayMs = -60.0;
  room.delayMs = 20.0;
  room.losses = 3;
  room.beforePlaying = [&] { room.wayMs = -61.2; };
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kWorse, result.verdict);
  EXPECT_THAT(result.words, HasSubstr("-1.2 ms remain with a delay of 60.0 ms: the computer was too busy"));
  EXPECT_THAT(room.delaysSet, testing::ElementsAre(60.0, 20.0));
}

TEST(PcCalibration, IsAlignedWhenBothListeningsAgreeThoughSoundWasLost) {
  for (const bool coarse : {false, true}) {
    FakeRoom room;
    room.wayMs = -60.0;
    room.losses = 3;
    if (coarse) {
      room.servicesMs = 66.0;
    }
    EXPECT_EQ(PcVerdict::kAligned, CalibrateIn(room, coarse).verdict);
  }
}

TEST(PcCalibration, SaysThatSoundWasLostWhenItCannotBeRead) {
  FakeRoom room;
  room.wayMs = -60.0;
  room.losses = 3;
  // Of one pair a burst lacks, of the others there is none.
  room.sound.design.pairs = 1;
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kNoDifference, result.verdict);
  EXPECT_THAT(result.words, HasSubstr("lost sound 3 times"));
  EXPECT_THAT(result.words, testing::Not(HasSubstr("turn the outputs up")));
  EXPECT_EQ(0.0, room.delayMs);
}

TEST(PcCalibration, PutsTheOldDelayBackWhenTheSecondListeningHearsNothing) {
  FakeRoom room;
  room.wayMs = -60.0;
  room.beforePlaying = [&] { room.sound.amplitudes = {320.0, 0.0}; };
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kFailed, result.verdict);
  EXPECT_THAT(result.words, HasSubstr("19 kHz from the delayed output is not"));
  EXPECT_EQ(0.0, room.delayMs);
}

TEST(PcCalibration, AMicrophoneThatIsMutedGivesDigitalSilence) {
  FakeRoom room;
  room.quiet.assign(1000, 0);
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kNoMicrophone, result.verdict);
  EXPECT_THAT(result.words, HasSubstr("digital silence"));
}

TEST(PcCalibration, SaysWhichToneLacks) {
  struct Row {
    std::array<double, 2> amplitudes;
    const char* words;
  };
  const Row rows[] = {{{320.0, 0.0}, "does the microphone reach 19 kHz"},
                      {{0.0, 320.0}, "17 kHz from the reference output is not"},
                      {{0.0, 0.0}, "nothing of the test sound is heard"}};
  for (const Row& row : rows) {
    FakeRoom room;
    room.sound.amplitudes = row.amplitudes;
    room.servicesMs = 35.0;  // of something else
    const Calibration result = CalibrateIn(room);
    EXPECT_EQ(PcVerdict::kNoDifference, result.verdict) << row.words;
    EXPECT_THAT(result.words, HasSubstr(row.words));
    EXPECT_EQ(0.0, room.delayMs);
    EXPECT_EQ(std::nullopt, result.beforeMs);
  }
}

TEST(PcCalibration, SaysThatTheMicrophoneIsOverdriven) {
  FakeRoom room;
  room.sound.gainDb = 60.0;
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kNoDifference, result.verdict);
  EXPECT_THAT(result.words, HasSubstr("overdriven"));
}

TEST(PcCalibration, SaysThatTheServiceCouldNotPlay) {
  FakeRoom room;
  room.sound.amplitudes = {0.0, 0.0};
  room.report.terminate = "play_fail";
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kFailed, result.verdict);
  EXPECT_THAT(result.words, HasSubstr("\"play_fail\", the test sound cannot be played: --verbose"));
  room.losses = 2;
  EXPECT_THAT(CalibrateIn(room).words, HasSubstr("cannot be played: the computer was too busy"));
}

TEST(PcCalibration, FailsWithAServiceThatDoesNotEndInOrder) {
  FakeRoom room;
  room.wayMs = -60.0;
  room.delayMs = 5.0;
  room.servicesMs = 60.0;
  room.ending.exitCode = 3;
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kFailed, result.verdict);
  EXPECT_THAT(result.words, HasSubstr("exit code 3"));
  EXPECT_EQ(5.0, room.delayMs);
}

TEST(PcCalibration, SaysSoWhenTheOldDelayCannotBePutBack) {
  FakeRoom room;
  room.wayMs = -60.0;
  room.beforePlaying = [&] {
    room.isDelayGone = true;
    throw MicrophoneProblem("the microphone is gone");
  };
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kNoMicrophone, result.verdict);
  EXPECT_THAT(result.words, HasSubstr("the microphone is gone; the old delay of 0.0 ms cannot be put back"));
  EXPECT_EQ(std::nullopt, result.appliedMs);
}

TEST(PcCalibration, PutsTheOldDelayBackWhenItsReportCannotBeWritten) {
  FakeRoom room;
  room.wayMs = -60.0;
  room.delayMs = 5.0;
  room.servicesMs = 60.0;
  CalibrationOptions options;
  options.maximumDelayMs = kMaximumMs;
  options.onRun = [](const ServiceRun&, const fine::Reading&) { throw std::runtime_error("the disk is full"); };
  const Calibration result = Calibrate(room, options);
  EXPECT_EQ(PcVerdict::kFailed, result.verdict);
  EXPECT_EQ("the disk is full", result.words);
  EXPECT_EQ(5.0, room.delayMs);
}

TEST(PcCalibration, DoesNothingWithoutADelayLine) {
  FakeRoom room;
  room.isDelayGone = true;
  const Calibration result = CalibrateIn(room);
  EXPECT_EQ(PcVerdict::kFailed, result.verdict);
  EXPECT_EQ("orvex-delay is not running", result.words);
}

}  // namespace
}  // namespace orvex::tools
