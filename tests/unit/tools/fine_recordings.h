// Recordings of the test sound: made from sines and ramps, without a room, or by the room model.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "fine/fine_reading.h"
#include "orvex/sim/room_config.h"
#include "testsound/sound_design.h"

namespace orvex::fine {

using Recording = std::vector<std::int16_t>;

// The sound as it reaches the microphone. Amplitudes are in units of a sample; the default is 46 dB above the noise.
struct HeardSound {
  tools::SoundDesign design;
  std::array<double, 2> tonesHz = {tools::kLeftToneHz, tools::kRightToneHz};
  std::array<double, 2> amplitudes = {320.0, 320.0};
  double noise = 25.0;      // standard deviation
  double beginMs = 200.0;   // of the speaker's first burst, by the remote's clock
  double differenceMs = 0;  // optical output minus speaker
  double rateErrorPpm = 0.0;
  double lengthMs = 2400.0;
  double gainDb = 0.0;  // of all of it; what exceeds 16 bits is clipped
  unsigned seed = 1;
};

Recording MakeRecording(const HeardSound& sound);

// At which sample the burst of a tone begins.
double OnsetOf(const HeardSound& sound, std::size_t tone, std::size_t pair);

Recording MakeNoise(double ms, double deviation, unsigned seed = 1);

// What the remote delivers of the test sound in a room. The first frame is played at `startMs`.
Recording RecordRoom(const sim::RoomConfig& room, double startMs, double lengthMs);

// Of equal length.
Recording SumOf(const Recording& one, const Recording& other);
void LoseBlock(Recording& recording, double atMs);
void CutAt(Recording& recording, double ms);

inline Samples SamplesOf(const Recording& recording) {
  return {recording.data(), recording.size()};
}

// Of the default sound; made at its first use.
const FineReader& Reader();

inline Reading ReadingOf(const Recording& recording) {
  return Reader().Read(SamplesOf(recording));
}

}  // namespace orvex::fine
