// What the receiver goes by, as far as a report shows it. The receiver keeps it to itself; the tests hold one against
// the other.
#pragma once

#include <cstdint>

#include "Application/OrvexReceiver.h"

namespace orvex::tools {

constexpr std::int32_t kIgnoredBuffers = 4;
constexpr std::int32_t kAmbientBlocks = 30;
constexpr std::int32_t kAmbientBuffer = kIgnoredBuffers + kAmbientBlocks + 1;  // the mean is taken when it comes
constexpr double kToneThreshold = 50.0;                                        // times the ambient mean
constexpr double kNeighbourThreshold = 5.0;                                    // times the mean of the neighbours
constexpr std::int32_t kNoiseLimit = 10;                                       // noisy tones that are put up with
constexpr std::int32_t kPairingSpan = 19;                                      // buffers from first to second tone
constexpr double kBufferS = OrvexReceiver::kBlockSamples / OrvexReceiver::kSampleRateHz;

}  // namespace orvex::tools
