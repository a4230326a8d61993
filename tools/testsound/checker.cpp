// Measures both channels and compares them with the design and with the limits below.
#include "testsound/checker.h"

#include <algorithm>
#include <cmath>

#include <fmt/core.h>

#include "testsound/analysis.h"
#include "testsound/sound_design.h"

namespace orvex::tools {
namespace {

using Reasons = std::vector<std::string>;

constexpr double kSilenceDb = -60.0;  // relative to the channel's peak
constexpr double kAudibleBelowHz = 15000.0;
constexpr double kFrequencyToleranceHz = 15.0;  // a quarter of the detector's bin
constexpr double kPeakSpreadDb = 1.0;
constexpr double kRoundingMs = 0.1;  // a burst's outermost samples are too quiet to be seen
constexpr std::size_t kGapFrames = kSoundRateHz / 1000;

struct Side {
  const char* name;
  double toneHz;
  double otherToneHz;
  Channel channel;
  double peak;
  std::vector<Burst> bursts;
};

double ToMs(std::size_t frames) {
  return static_cast<double>(frames) * 1000.0 / kSoundRateHz;
}

// A chunk name from a file may hold anything.
std::string Printable(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
  return text;
}

Side MakeSide(const std::vector<std::int16_t>& samples, bool left) {
  Side side{left ? "left" : "right", left ? kLeftToneHz : kRightToneHz, left ? kRightToneHz : kLeftToneHz, {}, 0.0, {}};
  side.channel.reserve(samples.size() / 2);
  for (std::size_t n = left ? 0 : 1; n < samples.size(); n += 2) {
    side.channel.push_back(samples[n] / kFullScale);
  }
  side.peak = Peak(side.channel);
  side.bursts = FindBursts(side.channel, side.peak * std::pow(10.0, kSilenceDb / 20.0), kGapFrames);
  return side;
}

void CheckLevel(const Side& side, Reasons& reasons) {
  const double peakDbfs = ToDb(side.peak);
  if (peakDbfs > kMaxPeakDbfs || peakDbfs < kMinPeakDbfs) {
    reasons.push_back(fmt::format("{} channel: peak {:.2f} dBFS, expected {:.0f} to {:.0f} dBFS", side.name, peakDbfs,
                                  kMinPeakDbfs, kMaxPeakDbfs));
  }
  const double audibleDb = ToDb(PeakBelow(side.channel, kAudibleBelowHz) / side.peak);
  if (audibleDb > kSilenceDb) {
    reasons.push_back(fmt::format("{} channel: {:.1f} dB of the tone below {:.0f} Hz, expected at most {:.0f} dB",
                                  side.name, audibleDb, kAudibleBelowHz, kSilenceDb));
  }
}

void CheckBurst(const Side& side, const Burst& burst, Reasons& reasons) {
  const double atMs = ToMs(burst.begin);
  const double lengthMs = ToMs(burst.end - burst.begin);
  // The outermost part of a ramp lies below the silence, so a burst looks shorter than it was made.
  if (lengthMs < kMinBurstMs / 2.0 || lengthMs > kMaxBurstMs) {
    reasons.push_back(fmt::format("{} channel at {:.1f} ms: burst of {:.1f} ms, expected {:.0f} to {:.0f} ms",
                                  side.name, atMs, lengthMs, kMinBurstMs, kMaxBurstMs));
  }
  const double frequencyHz = DominantFrequencyHz(side.channel, burst);
  if (std::abs(frequencyHz - side.toneHz) > kFrequencyToleranceHz) {
    reasons.push_back(fmt::format("{} channel at {:.1f} ms: burst of {:.0f} Hz, expected {:.0f} Hz", side.name, atMs,
                                  frequencyHz, side.toneHz));
    return;
  }
  const double tone = ToneAmplitude(side.channel, burst, side.toneHz);
  const double crosstalkDb = ToDb(ToneAmplitude(side.channel, burst, side.otherToneHz) / tone);
  if (crosstalkDb > kSilenceDb) {
    reasons.push_back(
        fmt::format("{} channel at {:.1f} ms: {:.0f} Hz at {:.1f} dB of the tone, expected at most {:.0f} dB",
                    side.name, atMs, side.otherToneHz, crosstalkDb, kSilenceDb));
  }
}

void CheckBurstLevels(const Side& side, Reasons& reasons) {
  for (const Burst& burst : side.bursts) {
    const auto from = side.channel.begin();
    const Channel part(from + static_cast<std::ptrdiff_t>(burst.begin), from + static_cast<std::ptrdiff_t>(burst.end));
    const double levelDb = ToDb(Peak(part) / side.peak);
    if (levelDb < -kPeakSpreadDb) {
      reasons.push_back(
          fmt::format("{} channel at {:.1f} ms: burst {:.1f} dB below the loudest, expected at most {:.0f} dB",
                      side.name, ToMs(burst.begin), -levelDb, kPeakSpreadDb));
    }
  }
}

void CheckSpacing(const Side& side, Reasons& reasons) {
  for (std::size_t n = 1; n < side.bursts.size(); ++n) {
    const Burst& burst = side.bursts[n - 1];
    const double spacingMs = ToMs(side.bursts[n].begin - burst.begin);
    const double expectedMs = MinSpacingMs(ToMs(burst.end - burst.begin));
    if (spacingMs + kRoundingMs < expectedMs) {
      reasons.push_back(fmt::format("{} channel at {:.1f} ms: next burst after {:.1f} ms, expected at least {:.1f} ms",
                                    side.name, ToMs(burst.begin), spacingMs, expectedMs));
    }
  }
}

void CheckSilences(const Side& side, Reasons& reasons) {
  const double leadInMs = ToMs(side.bursts.front().begin);
  if (leadInMs + kRoundingMs < kMinLeadInMs) {
    reasons.push_back(
        fmt::format("{} channel: lead-in {:.1f} ms, expected at least {:.0f} ms", side.name, leadInMs, kMinLeadInMs));
  }
  const double tailMs = ToMs(side.channel.size() - side.bursts.back().end);
  if (tailMs + kRoundingMs < kMinTailMs) {
    reasons.push_back(
        fmt::format("{} channel: tail {:.1f} ms, expected at least {:.1f} ms", side.name, tailMs, kMinTailMs));
  }
}

void CheckSide(const Side& side, Reasons& reasons) {
  CheckLevel(side, reasons);
  const std::size_t count = side.bursts.size();
  if (count < kMinPairs || count > kMaxPairs) {
    reasons.push_back(fmt::format("{} channel: {} bursts, expected {} to {}", side.name, count, kMinPairs, kMaxPairs));
    return;
  }
  for (const Burst& burst : side.bursts) {
    CheckBurst(side, burst, reasons);
  }
  CheckBurstLevels(side, reasons);
  CheckSpacing(side, reasons);
  CheckSilences(side, reasons);
}

// Both tones of a pair start all but together: what differs here would be taken for a difference of the room.
void CheckPairs(const Side& left, const Side& right, Reasons& reasons) {
  if (left.bursts.size() != right.bursts.size()) {
    reasons.push_back(
        fmt::format("{} bursts left, {} right, expected the same number", left.bursts.size(), right.bursts.size()));
    return;
  }
  for (std::size_t n = 0; n < left.bursts.size(); ++n) {
    const double apartMs = ToMs(right.bursts[n].begin) - ToMs(left.bursts[n].begin);
    if (std::abs(apartMs) > kMaxSkewMs + kRoundingMs) {
      reasons.push_back(
          fmt::format("pair {} at {:.1f} ms: right channel {:.1f} ms after the left, expected within {:.0f} ms", n + 1,
                      ToMs(left.bursts[n].begin), apartMs, kMaxSkewMs));
    }
  }
}

}  // namespace

std::vector<std::string> CheckHeader(const WaveHeader& header) {
  if (header.fileSize < kWaveHeaderBytes) {
    return {fmt::format("{} bytes, expected at least {} for the headers", header.fileSize, kWaveHeaderBytes)};
  }
  Reasons reasons;
  const auto name = [&](const char* what, const std::string& found, const char* expected) {
    if (found != expected) {
      reasons.push_back(fmt::format("{} \"{}\", expected \"{}\"", what, Printable(found), expected));
    }
  };
  const auto number = [&](const char* what, std::uint64_t found, std::uint64_t expected) {
    if (found != expected) {
      reasons.push_back(fmt::format("{} {}, expected {}", what, found, expected));
    }
  };
  name("chunk at byte 0", header.riffId, "RIFF");
  name("form type", header.waveId, "WAVE");
  name("chunk directly after the RIFF header", header.formatId, "fmt ");
  name("chunk directly after the format chunk", header.dataId, "data");
  number("RIFF size", header.riffSize, header.fileSize - 8);
  if (header.formatSize != 18) {  // plain PCM with an empty extension, which the player skips
    number("format chunk size", header.formatSize, 16);
  }
  number("format", header.formatTag, 1);
  number("channels", header.channels, 2);
  number("sample rate", header.sampleRate, kSoundRateHz);
  number("byte rate", header.byteRate, kSoundRateHz * 4);
  number("block align", header.blockAlign, 4);
  number("bits per sample", header.bitsPerSample, 16);
  number("data size", header.dataSize, header.fileSize - header.dataOffset);
  if (header.dataSize % 4 != 0) {
    reasons.push_back(fmt::format("data size {}, expected whole frames of 4 bytes", header.dataSize));
  }
  return reasons;
}

std::vector<std::string> CheckSound(const std::vector<std::int16_t>& samples) {
  Reasons reasons;
  const double durationMs = ToMs(samples.size() / 2);
  if (durationMs > kMaxDurationMs) {
    return {fmt::format("duration {:.1f} ms, expected at most {:.0f} ms", durationMs, kMaxDurationMs)};
  }
  const Side left = MakeSide(samples, true);
  const Side right = MakeSide(samples, false);
  for (const Side* side : {&left, &right}) {
    if (side->peak == 0.0) {
      reasons.push_back(fmt::format("{} channel: silent, expected bursts of {:.0f} Hz", side->name, side->toneHz));
    } else {
      CheckSide(*side, reasons);
    }
  }
  CheckPairs(left, right, reasons);
  return reasons;
}

std::vector<std::string> CheckFile(const std::string& path) {
  Reasons reasons = CheckHeader(ReadWaveHeader(path));
  // Samples of another layout would only give reasons that follow from the first ones.
  if (reasons.empty()) {
    reasons = CheckSound(ReadSamples(path));
  }
  for (std::string& reason : reasons) {
    reason = path + ": " + reason;
  }
  return reasons;
}

}  // namespace orvex::tools
