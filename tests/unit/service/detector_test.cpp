// What the detector computes from one block: samples, magnitudes and ratios.
#include "Application/OrvexDetector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "unit/service/receiver_sound_support.h"

namespace {

using namespace orvex::test;
using orvex::detector::MagnitudeAt;
using orvex::detector::MeasureBlock;
using orvex::detector::ReadSamples;
using orvex::detector::SecondsOf;
using orvex::detector::Tone;
using orvex::detector::ToneMagnitudes;
using testing::Each;
using testing::StartsWith;

using Bytes = std::vector<std::uint8_t>;

orvex::detector::Block BlockOf(const Bytes& bytes) {
  return ReadSamples({static_cast<std::uint16_t>(bytes.size()), bytes.empty() ? nullptr : bytes.data()});
}

orvex::detector::Block BlockOf(const Samples& samples) {
  return BlockOf(LittleEndian(samples));
}

TEST(DetectorSamples, AreReadFromLittleEndianBytes) {
  const auto first = [](const Bytes& bytes) { return BlockOf(bytes)[0]; };
  EXPECT_EQ(0x0102, first({0x02, 0x01}));
  EXPECT_EQ(-2, first({0xFE, 0xFF}));
  EXPECT_EQ(32767, first({0xFF, 0x7F}));
  EXPECT_EQ(-32768, first({0x00, 0x80}));
}

TEST(DetectorSamples, OfAShortBlockEndInSilence) {
  for (const std::size_t size : {0U, 1U, 2U, 3U, 1534U, 1535U, 1536U}) {
    const orvex::detector::Block block = BlockOf(Bytes(size, 0x11));
    const auto silence = block.begin() + static_cast<std::ptrdiff_t>(size / 2);
    EXPECT_THAT(std::vector<int>(block.begin(), silence), Each(0x1111)) << size;
    EXPECT_THAT(std::vector<int>(silence, block.end()), Each(0)) << size;
  }
}

TEST(DetectorSamples, OfALongBlockAreItsFirst768) {
  Bytes bytes(2000, 0x7F);
  std::fill_n(bytes.begin(), kVoiceBlockBytes, std::uint8_t{0});
  EXPECT_THAT(BlockOf(bytes), Each(0));
}

TEST(DetectorMagnitude, OfAClickIsItsHeightAtEveryFrequency) {
  for (const double hz : {17000.0, 17500.0, 18000.0, 19000.0}) {
    EXPECT_EQ(9.0, MagnitudeAt(hz, BlockOf(Click(9))));
    EXPECT_EQ(32768.0, MagnitudeAt(hz, BlockOf(Click(-32768))));
  }
}

TEST(DetectorMagnitude, OfAToneIsHalfItsAmplitudePerSample) {
  EXPECT_NEAR(kVoiceBlockSamples * 1000.0 / 2.0, MagnitudeAt(17000.0, BlockOf(Tone17(1000))), 1000.0);
  EXPECT_LT(MagnitudeAt(19000.0, BlockOf(Tone17(1000))), 10000.0);
}

TEST(DetectorMeasurement, HasEachFrequencyInItsPlaceAndTheRatiosToTheNeighbours) {
  const Samples sound = Block({300.0, 200.0, 100.0, 400.0, 0.0, 0.0});
  const Levels expected = LevelsOf(sound);
  const ToneMagnitudes measured = MeasureBlock(BlockOf(sound));
  EXPECT_NEAR(static_cast<double>(expected.at17000), measured.at17000, 1e-6);
  EXPECT_NEAR(static_cast<double>(expected.at17500), measured.at17500, 1e-6);
  EXPECT_NEAR(static_cast<double>(expected.at18000), measured.at18000, 1e-6);
  EXPECT_NEAR(static_cast<double>(expected.at19000), measured.at19000, 1e-6);
  EXPECT_NEAR(static_cast<double>(expected.Ratio17()), measured.ratio17, 1e-9);
  EXPECT_NEAR(static_cast<double>(expected.Ratio19()), measured.ratio19, 1e-9);
}

TEST(DetectorMeasurement, HasNoRatiosInDigitalSilence) {
  const ToneMagnitudes silence = MeasureBlock({});
  EXPECT_EQ(0.0, silence.at17000);
  EXPECT_TRUE(std::isnan(silence.ratio17));
  EXPECT_TRUE(std::isnan(silence.ratio19));
}

TEST(DetectorMeasurement, IsFoundByTone) {
  const ToneMagnitudes block{{1.0, 2.0, 3.0, 4.0}, 5.0, 6.0};
  EXPECT_EQ(1.0, block.At(Tone::k17000Hz));
  EXPECT_EQ(4.0, block.At(Tone::k19000Hz));
  EXPECT_EQ(5.0, block.Ratio(Tone::k17000Hz));
  EXPECT_EQ(6.0, block.Ratio(Tone::k19000Hz));
}

TEST(DetectorSeconds, AreThoseOfBuffersOf768SamplesAt46545Hz) {
  EXPECT_DOUBLE_EQ(7680.0 / 46545.0, SecondsOf(10));
  EXPECT_DOUBLE_EQ(-7680.0 / 46545.0, SecondsOf(-10));
}

}  // namespace
