// The detector's limits, and what it computes of one block: plain functions without state.
#pragma once

#include <array>
#include <cstdint>

#include "orvex/platform/remote_voice.h"

namespace orvex::detector {

constexpr std::int32_t kIgnoredBuffers = 4;  // at the start of a recording
constexpr std::int32_t kAmbientBlocks = 30;
constexpr std::int32_t kAmbientBuffer = kIgnoredBuffers + kAmbientBlocks + 1;  // with it the ambient means are known
constexpr double kToneThreshold = 50.0;                                        // times the ambient mean
constexpr double kNeighbourThreshold = 5.0;                                    // times the mean of the neighbours
constexpr std::int32_t kNoiseLimit = 10;                                       // noisy tones that are tolerated
constexpr std::int32_t kPairingSpan = 19;  // buffers from the first tone to the second
constexpr double kBufferS = kVoiceBlockSamples / kVoiceRateHz;

using Block = std::array<std::int16_t, kVoiceBlockSamples>;

enum class Tone { k17000Hz, k19000Hz };

// One value per analysed frequency.
struct Levels {
  double at17000 = 0.0;
  double at17500 = 0.0;
  double at18000 = 0.0;
  double at19000 = 0.0;

  double At(Tone tone) const { return tone == Tone::k17000Hz ? at17000 : at19000; }
};

// The magnitudes of one block, and the ratio of each tone to the mean of its neighbours, 17500 and 18000 Hz. In digital
// silence both ratios are NaN.
struct ToneMagnitudes : Levels {
  double ratio17 = 0.0;
  double ratio19 = 0.0;

  double Ratio(Tone tone) const { return tone == Tone::k17000Hz ? ratio17 : ratio19; }
};

// The samples of a block. A short one counts as one that ends in silence, and a last odd byte is left out.
Block ReadSamples(const VoiceData& record);

// |sum x[n] exp(-i 2 pi f n / kVoiceRateHz)| over one block, without taper or scale, n from 0.
double MagnitudeAt(double frequencyHz, const Block& samples);

ToneMagnitudes MeasureBlock(const Block& samples);

// Time that `buffers` buffers last, in seconds.
double SecondsOf(std::int32_t buffers);

}  // namespace orvex::detector
