// The shape of the test sound: what it consists of, and the limits that it must keep for a run to succeed.
#pragma once

#include <tuple>

#include "Application/OrvexDetector.h"

namespace orvex::tools {

constexpr double kPi = 3.14159265358979323846;
constexpr int kSoundRateHz = 48000;
constexpr double kFullScale = 32768.0;    // of 16-bit samples
constexpr double kLeftToneHz = 17000.0;   // television's speaker
constexpr double kRightToneHz = 19000.0;  // optical output

// Two tones pair up when the second comes no later after the first.
constexpr double kPairingSpanMs = detector::kPairingSpan * kVoiceBlockMs;
// The largest difference between the two ways to the microphone that a run is expected to correct.
constexpr double kLargestDifferenceMs = 280.0;
// The end of the playback drops what the device has not played yet.
constexpr double kDeviceBufferMs = 102.4;
// From the microphone to the detector, one buffer of collecting included.
constexpr double kVoiceLatencyMs = 100.0;

// What every fit sound keeps. Optical receivers mute their first moments while they lock, hence the lead-in; the tail
// is what must still be heard, or may be dropped, after the last burst.
constexpr double kMinLeadInMs = 150.0;
constexpr double kMinTailMs = kPairingSpanMs + kDeviceBufferMs + kVoiceLatencyMs;
constexpr double kMaxDurationMs = 6000.0;
constexpr double kMinBurstMs = 5.0;
constexpr double kMaxBurstMs = 30.0;  // longer bursts cost accuracy
constexpr double kMaxPeakDbfs = -6.0;
constexpr double kMinPeakDbfs = -30.0;
// After a missed tone the pair after next is the first that can succeed.
constexpr int kMinPairs = 3;
constexpr int kMaxPairs = 8;
constexpr double kMaxSkewMs = 1.0;

// Bursts closer than this are taken for the other tone of the wrong pair.
constexpr double MinSpacingMs(double burstMs) {
  return kPairingSpanMs + kLargestDifferenceMs + burstMs;
}

// One test sound: silence, then pairs of bursts (17 kHz left, 19 kHz right), then silence.
struct SoundDesign {
  double leadInMs = 200.0;
  int pairs = 4;
  double spacingMs = 640.0;  // from the start of one pair to the start of the next
  double burstMs = 18.0;     // ramps included
  double rampMs = 2.5;       // raised-cosine rise, and the same fall
  // How much later the 19 kHz bursts start. In a quiet room the detector finds them 0.8 ms sooner than those of 17 kHz,
  // in a noisy one both alike: what lies between halves the error.
  double skewMs = 0.35;
  double tailMs = 600.0;    // from the end of the last burst
  double levelDbfs = -6.0;  // peak of each channel

  double DurationMs() const { return leadInMs + (pairs - 1) * spacingMs + skewMs + burstMs + tailMs; }
};

inline bool operator==(const SoundDesign& a, const SoundDesign& b) {
  const auto values = [](const SoundDesign& s) {
    return std::tie(s.leadInMs, s.pairs, s.spacingMs, s.burstMs, s.rampMs, s.skewMs, s.tailMs, s.levelDbfs);
  };
  return values(a) == values(b);
}

}  // namespace orvex::tools
