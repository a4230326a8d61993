// The WAV file that we write, byte for byte, and what reading answers when it cannot.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testsound/wave_file.h"
#include "unit/tools/temporary_folder.h"

namespace orvex::tools {
namespace {

using testing::HasSubstr;

TEST(WaveFile, IsTheCanonicalHeaderAndTheSamples) {
  using namespace std::string_literals;
  const TemporaryFolder folder;
  WriteWaveFile(OutputFile(folder / "out.wav"), {1, -2, 0x1234, -32768});
  EXPECT_EQ(
      "RIFF\x2c\0\0\0WAVEfmt \x10\0\0\0\1\0\2\0\x80\xbb\0\0\0\xee\x02\0\4\0\x10\0data\x08\0\0\0"
      "\1\0\xfe\xff\x34\x12\0\x80"s,
      folder.Read("out.wav"));
}

TEST(WaveFile, ReadsBackWhatWasWritten) {
  const TemporaryFolder folder;
  const std::vector<std::int16_t> samples{0, 1, -1, 32767, -32768, 17};
  WriteWaveFile(OutputFile(folder / "out.wav"), samples);
  EXPECT_EQ(samples, ReadSamples(folder / "out.wav"));
  const WaveHeader header = ReadWaveHeader(folder / "out.wav");
  EXPECT_EQ(48000u, header.sampleRate);
  EXPECT_EQ(kWaveHeaderBytes, header.dataOffset);
}

TEST(WaveFile, NamesAPathThatCannotBeRead) {
  const TemporaryFolder folder;
  const std::string missing = folder / "missing/out.wav";
  try {
    ReadWaveHeader(missing);
    ADD_FAILURE() << "read";
  } catch (const WaveFileError& error) {
    EXPECT_THAT(error.what(), HasSubstr(missing + ": cannot be read"));
  }
  EXPECT_THROW(ReadWaveHeader(folder.Path()), WaveFileError);
}

}  // namespace
}  // namespace orvex::tools
