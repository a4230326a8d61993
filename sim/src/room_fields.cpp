// The comments of room_config.h tell callers the same ranges: change both.
#include "sim/src/room_fields.h"

#include <sstream>

namespace orvex::sim {
namespace {

constexpr double kMinDb = -200.0;
constexpr double kMaxDb = 40.0;
constexpr double kMaxLatencyMs = 10000.0;
constexpr double kMaxVoiceMs = 1000000.0;

void AddPathFields(const char* section, PathConfig& path, std::vector<RoomField>& fields) {
  fields.insert(fields.end(), {{section, "latency_ms", &path.latencyMs, 0.0, kMaxLatencyMs},
                               {section, "gain_db", &path.gainDb, kMinDb, kMaxDb},
                               {section, "distance_m", &path.distanceM, 0.0, 1000.0},
                               {section, "reflections", &path.reflections, 0.0, 0.0},
                               {section, "rt60_s", &path.rt60S, 0.0, 10.0},
                               {section, "direct_to_reverberant_db", &path.directToReverberantDb, -60.0, 100.0}});
}

}  // namespace

std::vector<RoomField> MakeRoomFields(RoomConfig& config) {
  std::vector<RoomField> fields;
  AddPathFields("tv", config.tv, fields);
  AddPathFields("optical", config.optical, fields);
  fields.insert(fields.end(), {{"optical", "muted", &config.opticalMuted, 0.0, 0.0},
                               {"optical", "lock_ms", &config.opticalLockMs, 0.0, kMaxLatencyMs},
                               {"microphone", "rate_hz", &config.microphoneRateHz, 20000.0, 96000.0},
                               {"microphone", "rate_error_ppm", &config.rateErrorPpm, -100000.0, 100000.0},
                               {"microphone", "noise_dbfs", &config.noiseDbfs, kMinDb, 0.0},
                               {"microphone", "noise_file", &config.noiseFile, 0.0, 0.0},
                               {"microphone", "noise_file_gain_db", &config.noiseFileGainDb, kMinDb, kMaxDb},
                               {"voice", "latency_ms", &config.voiceLatencyMs, 0.0, kMaxLatencyMs},
                               {"voice", "jitter_ms", &config.voiceJitterMs, 0.0, kMaxLatencyMs},
                               {"voice", "loss_probability", &config.voiceLossProbability, 0.0, 1.0},
                               {"voice", "window_ms", &config.voiceWindowMs, 1.0, kMaxVoiceMs},
                               {"voice", "silent_after_ms", &config.silentAfterMs, 0.0, kMaxVoiceMs},
                               {"", "seed", &config.seed, 0.0, 0.0}});
  return fields;
}

std::vector<RoomField> MakeReflectionFields(Reflection& reflection) {
  return {{"", "delay_ms", &reflection.delayMs, 0.0, 1000.0}, {"", "gain_db", &reflection.gainDb, kMinDb, kMaxDb}};
}

std::string NameOf(const RoomField& field) {
  return *field.section == '\0' ? field.key : std::string(field.section) + "." + field.key;
}

std::string RangeOf(const RoomField& field) {
  std::ostringstream text;
  text.precision(9);
  text << "a number from " << field.min << " to " << field.max;
  return text.str();
}

RoomError MakeValueError(const std::string& nameForErrors, const std::string& name, const std::string& value,
                         const std::string& expected) {
  return RoomError(nameForErrors + ": \"" + name + "\" is " + value + ", expected " + expected);
}

bool IsInRange(const RoomField& field, double value) {
  return value >= field.min && value <= field.max;
}

}  // namespace orvex::sim
