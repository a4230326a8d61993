// An observer of the receiver: what it measures and decides, with values at full precision.
#pragma once

#include <cstdint>

#include "Application/OrvexDetector.h"

// The receiver calls each operation on the thread that delivers the blocks, after it has taken and logged the step and
// before it calls its owner back. `buffer` is its buffer number at that moment. The service sets no observer.
class OrvexReceiverObserver {
public:
  using Levels = orvex::detector::Levels;
  using Tone = orvex::detector::Tone;
  using ToneMagnitudes = orvex::detector::ToneMagnitudes;

  virtual ~OrvexReceiverObserver() = default;

  // A block was measured. `ambient`: the sums so far in the ambient phase, the block that ends it included, then the
  // means.
  virtual void OnBlock(std::int32_t /*buffer*/, const ToneMagnitudes& /*magnitudes*/, const Levels& /*ambient*/) {}
  virtual void OnAmbientKnown(std::int32_t /*buffer*/, const Levels& /*means*/) {}
  // `tone` is taken as the first of a pair; from now on the other tone must have at least the magnitude `needed`.
  virtual void OnFirstTone(std::int32_t /*buffer*/, Tone /*tone*/, double /*needed*/) {}
  // `tone` came too late after the first tone, which was in buffer `first`, or is weaker than `needed`. The receiver
  // then takes it as a first tone.
  virtual void OnSequenceError(std::int32_t /*buffer*/, Tone /*tone*/, std::int32_t /*first*/, double /*needed*/) {}
  // `tone` was rejected because its neighbour frequencies are too strong; `count` tones have been so far.
  virtual void OnNoisyTone(std::int32_t /*buffer*/, Tone /*tone*/, std::int32_t /*count*/) {}
  // `tone` is the second of a pair that began in buffer `first`. `differenceS`: arrival of 19 kHz minus that of 17 kHz.
  virtual void OnPair(std::int32_t /*buffer*/, Tone /*tone*/, std::int32_t /*first*/, double /*differenceS*/) {}
  // A 19 kHz tone was rejected as noisy after kNoiseLimit others.
  virtual void OnAbnormalInput(std::int32_t /*buffer*/) {}
  // The remote has accepted the extend command; `buffer` is the last one before it.
  virtual void OnExtend(std::int32_t /*buffer*/) {}
};
