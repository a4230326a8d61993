// A room as a JSON text, the form in which a virtual television stores it.
//
//     { "tv": { "latency_ms": 80, "gain_db": -20, "distance_m": 2,
//               "reflections": [ { "delay_ms": 7, "gain_db": -12 } ],
//               "rt60_s": 0.3, "direct_to_reverberant_db": 10 },
//       "optical": { the same keys, and "muted": false, "lock_ms": 0 },
//       "microphone": { "rate_hz": 46545, "rate_error_ppm": 0, "noise_dbfs": -70 or "none",
//                       "noise_file": "", "noise_file_gain_db": 0 },
//       "voice": { "latency_ms": 30, "jitter_ms": 0, "loss_probability": 0, "window_ms": 6000,
//                  "silent_after_ms": "none" or a number },
//       "seed": 1 }
//
// A missing key has its default; "reflections" replaces the default list as a whole. Ranges and meaning: room_config.h.
#pragma once

#include <string>

#include "orvex/sim/room_config.h"

namespace orvex::sim {

// Throws RoomError when the text is not one JSON object, a key is unknown or repeated, or a value has the wrong type or
// is out of its range. The error names `nameForErrors` (the file), the key, the value and what was expected.
RoomConfig ParseRoom(const std::string& text, const std::string& nameForErrors);

// All keys, indented, with a line end; ParseRoom() gives the same room back.
std::string RoomToJson(const RoomConfig& config);

}  // namespace orvex::sim
