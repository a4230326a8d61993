// The checker accepts the sound that we make and names what is wrong with every other.
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testsound/checker.h"
#include "testsound/generator.h"
#include "testsound/sound_design.h"
#include "unit/tools/temporary_folder.h"

namespace orvex::tools {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(CheckSound, AcceptsTheSoundThatIsShipped) {
  EXPECT_THAT(CheckSound(GenerateSound({})), IsEmpty());
}

TEST(CheckSound, AcceptsEveryDesignAtTheEdgeOfItsLimits) {
  SoundDesign design;
  design.leadInMs = kMinLeadInMs;
  design.tailMs = kMinTailMs;
  design.pairs = kMinPairs;
  design.burstMs = kMaxBurstMs;
  design.spacingMs = MinSpacingMs(kMaxBurstMs);
  design.skewMs = kMaxSkewMs;
  EXPECT_THAT(CheckSound(GenerateSound(design)), IsEmpty());
  design.burstMs = kMinBurstMs;
  design.rampMs = kMinBurstMs / 2;
  design.spacingMs = MinSpacingMs(kMinBurstMs);
  EXPECT_THAT(CheckSound(GenerateSound(design)), IsEmpty());
}

struct DesignCase {
  const char* reason;
  std::function<void(SoundDesign&)> spoil;
};

TEST(CheckSound, NamesWhatADesignLacks) {
  const DesignCase cases[] = {
      {"lead-in 140.1 ms, expected at least 150 ms", [](SoundDesign& d) { d.leadInMs = 140.0; }},
      {"right channel: tail 500.0 ms, expected at least 515.9 ms", [](SoundDesign& d) { d.tailMs = 500.0; }},
      {"right channel: 2 bursts, expected 3 to 8", [](SoundDesign& d) { d.pairs = 2; }},
      {"next burst after 600.0 ms, expected at least 611.4 ms", [](SoundDesign& d) { d.spacingMs = 600.0; }},
      {"peak -5.00 dBFS, expected -30 to -6 dBFS", [](SoundDesign& d) { d.levelDbfs = -5.0; }},
      {"of the tone below 15000 Hz, expected at most -60 dB", [](SoundDesign& d) { d.rampMs = 0.5; }},
      {"burst of 34.9 ms, expected 5 to 30 ms", [](SoundDesign& d) { d.burstMs = 35.0; }},
      {"pair 1 at 200.1 ms: right channel 1.5 ms after the left, expected within 1 ms",
       [](SoundDesign& d) { d.skewMs = 1.5; }},
      {"duration 7138.4 ms, expected at most 6000 ms", [](SoundDesign& d) { d.tailMs = 5000.0; }},
  };
  for (const DesignCase& unfit : cases) {
    SoundDesign design;
    unfit.spoil(design);
    EXPECT_THAT(CheckSound(GenerateSound(design)), Contains(HasSubstr(unfit.reason)));
  }
}

using Samples = std::vector<std::int16_t>;

struct SamplesCase {
  const char* reason;
  std::function<void(Samples&)> spoil;
};

void SwapSides(Samples& samples) {
  for (std::size_t n = 0; n < samples.size(); n += 2) {
    std::swap(samples[n], samples[n + 1]);
  }
}

void MixSides(Samples& samples) {
  for (std::size_t n = 0; n < samples.size(); n += 2) {
    samples[n] = static_cast<std::int16_t>(samples[n] + samples[n + 1] / 100);
  }
}

void Silence(Samples& samples, std::size_t side, double fromMs, double toMs) {
  for (auto n = static_cast<std::size_t>(fromMs * 48); n < static_cast<std::size_t>(toMs * 48); ++n) {
    samples[2 * n + side] = 0;
  }
}

// Delays the right channel by `ms`.
void DelayRight(Samples& samples, std::size_t ms) {
  const std::size_t shift = 2 * 48 * ms;
  for (std::size_t n = samples.size() - 1; n > shift; n -= 2) {
    samples[n] = samples[n - shift];
  }
}

void SoftenSecondPair(Samples& samples) {
  for (std::size_t n = 2 * 48 * 800; n < 2 * 48 * 900; ++n) {
    samples[n] = static_cast<std::int16_t>(samples[n] / 2);
  }
}

TEST(CheckSound, NamesWhatIsWrongWithTheSamples) {
  const SamplesCase cases[] = {
      {"left channel at 200.4 ms: burst of 19000 Hz, expected 17000 Hz", SwapSides},
      {"left channel at 200.1 ms: 19000 Hz at -40.0 dB of the tone, expected at most -60 dB", MixSides},
      {"4 bursts left, 3 right, expected the same number", [](Samples& s) { Silence(s, 1, 200, 300); }},
      {"right channel: silent, expected bursts of 19000 Hz", [](Samples& s) { Silence(s, 1, 0, 2738); }},
      {"pair 1 at 200.1 ms: right channel 5.3 ms after the left", [](Samples& s) { DelayRight(s, 5); }},
      {"burst 6.0 dB below the loudest, expected at most 1 dB", SoftenSecondPair},
      {"left channel at 500.0 ms: burst of 0.0 ms", [](Samples& s) { s[2 * 48 * 500] = 3000; }},
  };
  for (const SamplesCase& unfit : cases) {
    Samples samples = GenerateSound({});
    unfit.spoil(samples);
    EXPECT_THAT(CheckSound(samples), Contains(HasSubstr(unfit.reason)));
  }
}

TEST(CheckSound, SurvivesNoSoundAtAll) {
  EXPECT_THAT(CheckSound({}), Contains(HasSubstr("left channel: silent")));
  EXPECT_THAT(CheckSound(Samples(2000, 32767)), Contains(HasSubstr("peak")));
}

struct HeaderCase {
  const char* reason;
  std::size_t offset;
  std::string bytes;
};

TEST(CheckFile, NamesTheFileAndWhatIsWrongWithItsHeaders) {
  using namespace std::string_literals;
  const TemporaryFolder folder;
  WriteWaveFile(OutputFile(folder / "fit.wav"), GenerateSound({}));
  ASSERT_THAT(CheckFile(folder / "fit.wav"), IsEmpty());
  const HeaderCase cases[] = {
      {"chunk at byte 0 \"RIFX\", expected \"RIFF\"", 0, "RIFX"},
      {"RIFF size 7, expected 525800", 4, "\7\0\0\0"s},
      {"form type \"W?VE\", expected \"WAVE\"", 8, "W\1VE"},
      {"chunk directly after the RIFF header \"LIST\", expected \"fmt \"", 12, "LIST"},
      {"format chunk size 15, expected 16", 16, "\x0f"},
      {"format 3, expected 1", 20, "\3"},
      {"channels 1, expected 2", 22, "\1"},
      {"sample rate 44100, expected 48000", 24, "\x44\xac"},
      {"byte rate 192001, expected 192000", 28, "\1"},
      {"block align 2, expected 4", 32, "\2"},
      {"bits per sample 24, expected 16", 34, "\x18"},
      {"chunk directly after the format chunk \"LIST\", expected \"data\"", 36, "LIST"},
      {"data size 525824, expected 525764", 40, "\0\x06"s},
      {"chunk directly after the format chunk \"\", expected \"data\"", 16, "\xff\xff\xff\xff"},
  };
  const std::string fit = folder.Read("fit.wav");
  for (const HeaderCase& unfit : cases) {
    std::string bytes = fit;
    bytes.replace(unfit.offset, unfit.bytes.size(), unfit.bytes);
    const std::string path = folder.Write("unfit.wav", bytes);
    EXPECT_THAT(CheckFile(path), Contains(path + ": " + unfit.reason));
  }
}

TEST(CheckFile, NamesAFileThatIsCutOrTooShort) {
  const TemporaryFolder folder;
  WriteWaveFile(OutputFile(folder / "fit.wav"), GenerateSound({}));
  const std::string fit = folder.Read("fit.wav");
  EXPECT_THAT(CheckFile(folder.Write("cut.wav", fit.substr(0, 1044))),
              Contains(HasSubstr("data size 525764, expected 1000")));
  EXPECT_THAT(CheckFile(folder.Write("short.wav", fit.substr(0, 43))),
              testing::ElementsAre(HasSubstr("43 bytes, expected at least 44 for the headers")));
  EXPECT_THAT(CheckFile(folder.Write("empty.wav", "")), testing::ElementsAre(HasSubstr("empty.wav: 0 bytes")));
}

TEST(CheckFile, ReportsAFileWithoutSamplesAsSilent) {
  const TemporaryFolder folder;
  WriteWaveFile(OutputFile(folder / "silent.wav"), {});
  EXPECT_THAT(CheckFile(folder / "silent.wav"), Contains(HasSubstr("left channel: silent")));
}

TEST(CheckFile, AcceptsAFormatChunkWithAnEmptyExtension) {
  const TemporaryFolder folder;
  WriteWaveFile(OutputFile(folder / "fit.wav"), GenerateSound({}));
  std::string bytes = folder.Read("fit.wav");
  bytes.insert(36, 2, '\0');
  bytes[16] = 18;
  bytes[4] = static_cast<char>(bytes[4] + 2);
  EXPECT_THAT(CheckFile(folder.Write("extended.wav", bytes)), IsEmpty());
}

}  // namespace
}  // namespace orvex::tools
