// One room, one run: the shipped receiver listens, in virtual time, to a test sound that is played when it asks for it.
#pragma once

#include <cstdint>
#include <vector>

#include "orvex/sim/room_config.h"

namespace orvex::tools {

struct Trial {
  sim::RoomConfig room;
  double outputDelayMs = 0.0;       // of the optical output, before its own latency; limited as sim::Room does it
  double startMs = 0.0;             // from the end of the ambient phase to the first frame of the sound
  double lateMs = 0.0;              // delay of the main loop on each event
  bool finishedMark = true;         // the receiver's finished mark is set at the first result
  std::vector<std::int16_t> sound;  // interleaved stereo at 48000 Hz
  std::vector<float> disturbance;   // added to the noise; full scale is 1
  double disturbanceRateHz = 0.0;   // 0: the microphone's nominal rate
};

enum class Ending { kFound, kNothing, kAbnormal };

// Times are counted from the start of the recording.
struct TrialOutcome {
  Ending ending = Ending::kNothing;
  double differenceMs = 0.0;       // that the run applies; 0: none was found
  double firstDifferenceMs = 0.0;  // of the first result; later ones may have replaced it, without the finished mark
  double decidedMs = 0.0;          // when the run was over: result, abnormal input, or the end of the playback
  double endedMs = 0.0;            // when the process is over: it waits for the player to write the whole sound
};

// As the service does it: the sound starts `startMs` after the block that completes the ambient phase was delivered. A
// result ends the run, and so does the player's end callback, which comes when the last frame was written and drops
// what the device still holds. The run has 10 s. On each of these events the main loop acts `lateMs` later; the
// receiver goes on with the blocks that are delivered meanwhile. Throws sim::RoomError.
TrialOutcome RunTrial(const Trial& trial);

// What the receiver is given in such a run, at kVoiceRateHz, when the run does not end with a result but `listenMs`
// after the sound's first frame has left the device. Blocks that are lost on the way are missing. Throws
// sim::RoomError.
std::vector<std::int16_t> RecordTrial(const Trial& trial, double listenMs);

}  // namespace orvex::tools
