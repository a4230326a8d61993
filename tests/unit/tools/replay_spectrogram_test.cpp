// Levels over time and frequency, the picture of them, and what is drawn into it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <png.h>

#include <boost/archive/iterators/binary_from_base64.hpp>
#include <boost/archive/iterators/transform_width.hpp>
#include <cmath>

#include "replay/png_picture.h"
#include "replay/recording.h"
#include "replay/spectrogram.h"
#include "replay/spectrogram_chart.h"
#include "unit/tools/replay_recordings.h"

namespace orvex::tools {
namespace {

using testing::Each;
using testing::Gt;
using testing::HasSubstr;
using testing::Lt;
using testing::Not;

std::size_t RowAt(double kilohertz) {
  return static_cast<std::size_t>(std::lround((kSpectrogramKhz.high - kilohertz) / kSpectrogramStepKhz));
}

std::vector<std::int16_t> Sine(double hertz, double amplitude, int blocks) {
  std::vector<std::int16_t> samples;
  for (int n = 0; n < blocks * kVoiceBlockSamples; ++n) {
    samples.push_back(static_cast<std::int16_t>(
        std::lround(amplitude * std::sin(2.0 * 3.14159265358979 * hertz * n / kVoiceRateHz))));
  }
  return samples;
}

TEST(ReplaySpectrogram, HasTheLevelOfASineInItsRowAndNothingFarFromIt) {
  const Spectrogram spectrogram = MakeSpectrogram(Sine(17000.0, 3276.8, 4), {0.0, 4.0}, 8);
  for (std::size_t column = 0; column < spectrogram.columns; ++column) {
    EXPECT_NEAR(-20.0, spectrogram.At(RowAt(17.0), column), 0.1);
    for (std::size_t row = 0; row < kSpectrogramRows; ++row) {
      const double khz = kSpectrogramKhz.high - static_cast<double>(row) * kSpectrogramStepKhz;
      if (std::abs(khz - 17.0) > 0.45) {
        EXPECT_LT(spectrogram.At(row, column), -70.0) << khz;
      }
    }
  }
}

TEST(ReplaySpectrogram, HasABurstWhereItSounds) {
  const auto samples = SamplesOf({MakeRecording("....9....."), ""});
  const Spectrogram spectrogram = MakeSpectrogram(samples, {0.0, 10.0}, 20);
  for (std::size_t column = 0; column < 20; ++column) {
    const double middle = (static_cast<double>(column) + 0.5) / 2.0;
    const float level = spectrogram.At(RowAt(19.0), column);
    if (std::abs(middle - 4.5) < 0.5) {
      EXPECT_GT(level, -30.0) << column;
    } else if (std::abs(middle - 4.5) > 1.0) {
      EXPECT_LT(level, -60.0) << column;
    }
  }
}

TEST(ReplaySpectrogram, LosesNoBurstInWideColumns) {
  std::string blocks(400, '.');
  blocks[237] = '7';
  const Spectrogram spectrogram = MakeSpectrogram(SamplesOf({MakeRecording(blocks), ""}), {0.0, 400.0}, 10);
  for (std::size_t column = 0; column < 10; ++column) {
    EXPECT_EQ(column == 5, spectrogram.At(RowAt(17.0), column) > -30.0F) << column;
  }
}

TEST(ReplaySpectrogram, TakesRecordingsOfAnyLength) {
  EXPECT_THAT(MakeSpectrogram({}, {0.0, 1.0}, 4).dbfs, Each(-200.0F));
  EXPECT_THAT(MakeSpectrogram(Sine(17000.0, 100.0, 1), {50.0, 51.0}, 4).dbfs,
              Each(testing::AllOf(Gt(-201.0F), Lt(0.0F))));
  std::vector<std::int16_t> few = Sine(17000.0, 10000.0, 1);
  few.resize(300);
  EXPECT_GT(MakeSpectrogram(few, {0.0, 1.0}, 1).At(RowAt(17.0), 0), -60.0F);
}

// A recording that ends within a burst ends there, not in a click over all frequencies.
TEST(ReplaySpectrogram, ShowsNoClickAtTheEnd) {
  const Spectrogram spectrogram = MakeSpectrogram(Sine(19000.0, 10000.0, 3), {0.0, 3.0}, 24);
  for (std::size_t column = 0; column < 24; ++column) {
    EXPECT_LT(spectrogram.At(RowAt(15.5), column), -70.0F) << column;
  }
}

std::vector<std::uint8_t> FromBase64(std::string text) {
  namespace iterators = boost::archive::iterators;
  using Bytes = iterators::transform_width<iterators::binary_from_base64<std::string::const_iterator>, 8, 6>;
  const auto fill = static_cast<std::size_t>(std::count(text.begin(), text.end(), '='));
  std::replace(text.begin(), text.end(), '=', 'A');
  std::vector<std::uint8_t> bytes(Bytes(text.begin()), Bytes(text.end()));
  bytes.resize(bytes.size() - fill);
  return bytes;
}

TEST(ReplayPicture, IsAPngWithThesePixels) {
  const std::vector<Colour> colours = {{255, 255, 255}, {1, 2, 3}, {40, 50, 60}};
  for (const std::size_t width : {2u, 3u, 6u}) {
    const std::vector<std::uint8_t> pixels = {0, 1, 2, 2, 1, 0};
    const std::vector<std::uint8_t> file = FromBase64(MakePng(width, pixels, colours));
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    ASSERT_NE(0, png_image_begin_read_from_memory(&image, file.data(), file.size())) << image.message;
    ASSERT_EQ(width, image.width);
    ASSERT_EQ(6 / width, image.height);
    image.format = PNG_FORMAT_RGB;
    std::vector<std::uint8_t> read(PNG_IMAGE_SIZE(image));
    ASSERT_NE(0, png_image_finish_read(&image, nullptr, read.data(), 0, nullptr)) << image.message;
    for (std::size_t n = 0; n < pixels.size(); ++n) {
      EXPECT_EQ(colours[pixels[n]].red, read[3 * n]);
      EXPECT_EQ(colours[pixels[n]].green, read[3 * n + 1]);
      EXPECT_EQ(colours[pixels[n]].blue, read[3 * n + 2]);
    }
  }
}

std::string Draw(const std::string& blocks) {
  const auto bytes = MakeRecording(blocks);
  const RunRecord run = ReplayRecord(bytes);
  return DrawSpectrogram(run, SamplesOf({bytes, ""}), WholeRecording(run));
}

TEST(ReplaySpectrogramChart, SeparatesATonesBlocksFromThoseThatWereRejectedBefore) {
  const std::string covered = Draw(Ambient() + "bb9.");
  EXPECT_THAT(covered, HasSubstr("19 kHz reached its threshold in buffers 36 to 37, and was rejected</title>"));
  EXPECT_THAT(covered, HasSubstr("19 kHz reached its threshold in buffers 38 to 38</title>"));
}

TEST(ReplaySpectrogramChart, SaysOfEachToneWhatBecameOfIt) {
  const std::string both = Draw(Ambient() + "77..9.");
  EXPECT_THAT(both, HasSubstr(">17 kHz, television&#39;s speaker: found in 2 blocks</text>"));
  EXPECT_THAT(both, HasSubstr(">19 kHz, optical output: found in 1 block</text>"));
  EXPECT_THAT(both, HasSubstr("17 kHz reached its threshold in buffers 36 to 37</title>"));
  EXPECT_THAT(both, HasSubstr("<g class='pair' data-first='36' data-second='40'>"));
  EXPECT_THAT(both, HasSubstr(">+66.0 ms</text>"));
  EXPECT_THAT(both, HasSubstr(">17 kHz threshold</text>"));
  EXPECT_THAT(both, HasSubstr(">19 kHz threshold</text>"));

  const std::string noisy = Draw(Ambient() + "7..y.");
  EXPECT_THAT(noisy, HasSubstr(">19 kHz, optical output: drowned by its neighbours</text>"));
  EXPECT_THAT(noisy, HasSubstr("class='box rejected f19'"));
  EXPECT_THAT(noisy, HasSubstr("19 kHz reached its threshold in buffers 39 to 39, and was rejected</title>"));
  EXPECT_THAT(noisy, Not(HasSubstr("class='pair'")));

  EXPECT_THAT(Draw(Ambient() + "b.b"), HasSubstr(">19 kHz, optical output: covered by 17 kHz</text>"));
  EXPECT_THAT(Draw(Ambient() + "..."), HasSubstr(" dB short of its threshold</text>"));
  EXPECT_THAT(Draw("..."), HasSubstr("not looked for</text>"));
  EXPECT_THAT(Draw(std::string(35, '0') + "7"), HasSubstr("no threshold, as its ambient mean is 0</text>"));
  EXPECT_THAT(Draw(Ambient() + "00"), HasSubstr("silent</text>"));
}

}  // namespace
}  // namespace orvex::tools
