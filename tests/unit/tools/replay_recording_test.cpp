// Reading recordings: dumps as they are, WAV files whatever their sample format.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sndfile.h>

#include <cstring>

#include "orvex/platform/remote_voice.h"
#include "replay/recording.h"
#include "unit/tools/temporary_folder.h"

namespace orvex::tools {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr int kRateHz = static_cast<int>(kVoiceRateHz);

void WriteWave(const std::string& path, int format, int channels, int rateHz, const std::vector<double>& samples) {
  SF_INFO info{};
  info.format = format;
  info.channels = channels;
  info.samplerate = rateHz;
  SNDFILE* const file = sf_open(path.c_str(), SFM_WRITE, &info);
  ASSERT_NE(nullptr, file) << sf_strerror(nullptr);
  sf_write_double(file, samples.data(), static_cast<sf_count_t>(samples.size()));
  sf_close(file);
}

// The message of the error that reading the file throws; empty when it throws none.
std::string ErrorOf(const std::string& path) {
  try {
    ReadRecording(path);
  } catch (const RecordingError& problem) {
    return problem.what();
  }
  return "";
}

TEST(ReplayRecording, TakesTheBytesOfADumpAsTheyAre) {
  const TemporaryFolder folder;
  const std::string content("RIFF\0\1\2", 7);
  const Recording recording = ReadRecording(folder.Write("dump", content));
  EXPECT_EQ(content, std::string(recording.bytes.begin(), recording.bytes.end()));
  EXPECT_EQ("", recording.warning);
  EXPECT_TRUE(ReadRecording(folder.Write("empty", "")).bytes.empty());
}

TEST(ReplayRecording, HasNoSampleOfAnOddLastByte) {
  EXPECT_THAT(SamplesOf({{0x34, 0x12, 0xff, 0xff, 0x7f}, ""}), ElementsAre(0x1234, -1));
  EXPECT_TRUE(SamplesOf({{0x7f}, ""}).empty());
}

TEST(ReplayRecording, ScalesEverySampleFormatToSixteenBits) {
  const TemporaryFolder folder;
  for (const int format : {SF_FORMAT_PCM_16, SF_FORMAT_PCM_24, SF_FORMAT_PCM_32, SF_FORMAT_FLOAT, SF_FORMAT_DOUBLE}) {
    const std::string path = folder / "a.wav";
    WriteWave(path, SF_FORMAT_WAV | format, 1, kRateHz, {0.0, 0.25, -0.5, 1.0 / 32768, -0.25});
    const Recording recording = ReadRecording(path);
    EXPECT_THAT(SamplesOf(recording), ElementsAre(0, 8192, -16384, 1, -8192)) << format;
    EXPECT_EQ("", recording.warning);
  }
}

TEST(ReplayRecording, TakesWaveFilesOfTheOtherByteOrderAndOfAnyLength) {
  const TemporaryFolder folder;
  for (const int format : {SF_FORMAT_WAV | SF_ENDIAN_BIG, 0 | SF_FORMAT_RF64}) {
    WriteWave(folder / "a.wav", format | SF_FORMAT_PCM_16, 1, kRateHz, {0.25, 3.0 / 32768});
    EXPECT_THAT(SamplesOf(ReadRecording(folder / "a.wav")), ElementsAre(8192, 3)) << format;
  }
}

TEST(ReplayRecording, FeedsEveryBlockAndTellsHowFarItIs) {
  ReceiverRig rig({});
  std::vector<std::size_t> told;
  Feed(std::vector<std::uint8_t>(2 * kVoiceBlockBytes + 100), rig, [&](std::size_t done) { told.push_back(done); });
  EXPECT_THAT(told, ElementsAre(kVoiceBlockBytes, 2 * kVoiceBlockBytes, 2 * kVoiceBlockBytes + 100));
  EXPECT_EQ(3, rig.GetReceiver().GetBufferCount());
}

TEST(ReplayRecording, KeepsWhatIsLouderThanFullScaleAtFullScale) {
  const TemporaryFolder folder;
  WriteWave(folder / "a.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 1, kRateHz, {1.5, -1.5});
  EXPECT_THAT(SamplesOf(ReadRecording(folder / "a.wav")), ElementsAre(32767, -32768));
}

TEST(ReplayRecording, WarnsOfAnotherRate) {
  const TemporaryFolder folder;
  WriteWave(folder / "a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, 48000, {0.25});
  const Recording recording = ReadRecording(folder / "a.wav");
  EXPECT_THAT(SamplesOf(recording), ElementsAre(8192));
  EXPECT_EQ(folder / "a.wav" + ": 48000 Hz, taken as the remote's 46545 Hz", recording.warning);
}

TEST(ReplayRecording, RefusesWhatItCannotUse) {
  const TemporaryFolder folder;
  WriteWave(folder / "stereo.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2, kRateHz, {0.0, 0.0});
  EXPECT_EQ(folder / "stereo.wav" + ": 2 channels, expected 1", ErrorOf(folder / "stereo.wav"));
  EXPECT_THAT(ErrorOf(folder.Write("broken.wav", "RIFF\1\1\1\1WAVEfmt ")), HasSubstr("broken.wav: no usable WAV file"));
  EXPECT_THAT(ErrorOf(folder / "missing"), HasSubstr("missing: cannot be read: No such file or directory"));
  EXPECT_THAT(ErrorOf(folder.Path()), HasSubstr(": cannot be read: Is a directory"));
}

}  // namespace
}  // namespace orvex::tools
