// Watches the receiver: what it measures and decides, with values at full precision.
#pragma once

#include <cstdint>

#include "Application/OrvexDetector.h"

// Each operation is called on the thread that delivers the blocks, when the step has been taken and logged and before
// the receiver calls its owner back. `buffer` is the receiver's buffer number at that moment. The service has no
// observer.
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
  // `tone` came too late after the first one, in buffer `first`, or has not the magnitude `needed`. It is taken as a
  // first tone next.
  virtual void OnSequenceError(std::int32_t /*buffer*/, Tone /*tone*/, std::int32_t /*first*/, double /*needed*/) {}
  // `tone` does not stand out of its neighbours; `count` such tones have come.
  virtual void OnNoisyTone(std::int32_t /*buffer*/, Tone /*tone*/, std::int32_t /*count*/) {}
  // `tone` is the second of a pair that began in buffer `first`. `differenceS`: arrival of 19 kHz minus that of 17 kHz.
  virtual void OnPair(std::int32_t /*buffer*/, Tone /*tone*/, std::int32_t /*first*/, double /*differenceS*/) {}
  // There were too many noisy tones.
  virtual void OnAbnormalInput(std::int32_t /*buffer*/) {}
  // The remote has taken the extend command; `buffer` is the last one before it.
  virtual void OnExtend(std::int32_t /*buffer*/) {}
};
