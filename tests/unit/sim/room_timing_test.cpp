// An impulse arrives at the microphone where latency, distance, S/PDIF delay and the sampling rate say.
#include <cmath>

#include <gtest/gtest.h>

#include "unit/sim/signals.h"

namespace orvex::sim::test {
namespace {

using namespace std::chrono_literals;

struct TimingCase {
  const char* name;
  double latencyMs;
  double distanceM;
  double spdifDelayMs;
  double rateHz;
  double rateErrorPpm;
  Time start;
};

class ImpulseTimingTest : public testing::TestWithParam<TimingCase> {};

TEST_P(ImpulseTimingTest, BothChannelsArriveWithinATwentiethOfASample) {
  const TimingCase& timing = GetParam();
  RoomConfig config = MakeBareRoom();
  config.microphoneRateHz = timing.rateHz;
  config.rateErrorPpm = timing.rateErrorPpm;
  config.tv.latencyMs = config.optical.latencyMs = timing.latencyMs;
  config.tv.distanceM = config.optical.distanceM = timing.distanceM;
  constexpr std::size_t kFrame = 1000;
  for (const std::size_t channel : {kLeft, kRight}) {
    Room room(config);
    room.SetSpdifDelayMs(timing.spdifDelayMs);
    Samples sound = MakeSilence(2000);
    AddImpulse(sound, channel, kFrame);
    const double spdifS = channel == kRight ? timing.spdifDelayMs * 1e-3 : 0.0;
    const double arrivalS = static_cast<double>(timing.start.count()) * 1e-9 + kFrame / kPlaybackRateHz +
                            timing.latencyMs * 1e-3 + timing.distanceM / 343.0 + spdifS;
    const double expected = arrivalS * timing.rateHz * (1.0 + timing.rateErrorPpm * 1e-6);
    const auto count = static_cast<std::size_t>(expected) + 2000;
    EXPECT_NEAR(ArrivalSample(PlayAndRecord(room, sound, count, timing.start)), expected, 0.05)
        << "channel " << channel;
  }
}

INSTANTIATE_TEST_SUITE_P(Rooms, ImpulseTimingTest,
                         testing::Values(TimingCase{"Bare", 0, 0, 0, kRateHz, 0, 0ns},
                                         TimingCase{"OneMetre", 0, 1, 0, kRateHz, 0, 0ns},
                                         TimingCase{"TwelveMetres", 0, 12.34, 0, kRateHz, 0, 0ns},
                                         TimingCase{"Latency", 80, 0, 0, kRateHz, 0, 0ns},
                                         TimingCase{"FractionOfAFrame", 17.0031, 2.5, 0, kRateHz, 0, 0ns},
                                         TimingCase{"SpdifDelay", 20, 2, 100, kRateHz, 0, 0ns},
                                         TimingCase{"LongestSpdifDelay", 0, 0, 10000, kRateHz, 0, 0ns},
                                         TimingCase{"FastClock", 20, 2, 500, kRateHz, 2000, 0ns},
                                         TimingCase{"SlowClock", 20, 2, 500, kRateHz, -2000, 0ns},
                                         TimingCase{"FarOffClock", 20, 2, 500, kRateHz, 31000, 0ns},
                                         TimingCase{"PlaybackRate", 20, 2, 50, 48000, 0, 0ns},
                                         TimingCase{"LowestRate", 20, 2, 50, 20000, -100000, 0ns},
                                         TimingCase{"HighestRate", 20, 2, 50, 96000, 100000, 0ns},
                                         TimingCase{"OddStart", 3, 2, 7, kRateHz, 15, 123456789ns},
                                         TimingCase{"AfterHalfAMinute", 3, 2, 7, kRateHz, 150, 30000000001ns}),
                         [](const auto& instance) { return instance.param.name; });

TEST(RoomTimingTest, AReflectionArrivesItsDelayLater) {
  for (const double delayMs : {2.0, 7.77, 25.0, 333.3}) {
    RoomConfig config = MakeBareRoom();
    config.tv.latencyMs = 10.0;
    config.tv.reflections = {{delayMs, -3.0}};
    Room room(config);
    Samples sound = MakeSilence(10);
    AddImpulse(sound, kLeft, 0);
    const Samples recording = PlayAndRecord(room, sound, 20000);
    const double direct = 10.0e-3 * kRateHz;
    const double expected = (10.0 + delayMs) * 1e-3 * kRateHz;
    const auto between = static_cast<std::size_t>((direct + expected) / 2.0);
    EXPECT_NEAR(ArrivalSample(recording, 0, between), direct, 0.1);
    EXPECT_NEAR(ArrivalSample(recording, between, recording.size()), expected, 0.1) << delayMs << " ms";
  }
}

TEST(RoomTimingTest, SamplesAreTakenAtTheActualRateFromTheStartOn) {
  RoomConfig config = MakeBareRoom();
  config.rateErrorPpm = 1000.0;
  Room room(config);
  room.StartRecording(5s);
  EXPECT_EQ(room.SampleTime(0), 5s);
  EXPECT_EQ(room.SampleTime(kSecond).count(), 5000000000 + std::llround(1e9 / 1.001));
}

TEST(RoomTimingTest, ARecordingThatBeginsLaterHearsThePlaybackAtItsOwnTime) {
  Room room(MakeBareRoom());
  Samples sound = MakeSilence(48000);
  AddImpulse(sound, kLeft, 12000);
  AddImpulse(sound, kLeft, 36000);
  const Samples first = PlayAndRecord(room, sound, 4000);
  EXPECT_EQ(FirstSound(first), first.size());
  room.StartRecording(500ms);
  EXPECT_NEAR(ArrivalSample(Record(room, 30000)), 0.25 * kRateHz, 0.05);
}

}  // namespace
}  // namespace orvex::sim::test
