// Defaults, range check and comparison of a room.
#include "orvex/sim/room_config.h"

#include <sstream>
#include <stdexcept>
#include <tuple>

#include "sim/src/room_fields.h"

namespace orvex::sim {
namespace {

void CheckNumber(const RoomField& field, double value, const std::string& prefix, const std::string& nameForErrors) {
  if (!IsInRange(field, value)) {
    std::ostringstream text;
    text << value;
    throw MakeValueError(nameForErrors, prefix + NameOf(field), text.str(), RangeOf(field));
  }
}

void CheckReflections(const RoomField& field, std::vector<Reflection>& reflections, const std::string& nameForErrors) {
  if (reflections.size() > kMaxReflections) {
    throw MakeValueError(nameForErrors, NameOf(field), "a list of " + std::to_string(reflections.size()),
                         "at most " + std::to_string(kMaxReflections) + " reflections");
  }
  for (std::size_t i = 0; i < reflections.size(); ++i) {
    const std::string prefix = NameOf(field) + "[" + std::to_string(i) + "].";
    for (const RoomField& part : MakeReflectionFields(reflections[i])) {
      CheckNumber(part, *std::get<double*>(part.target), prefix, nameForErrors);
    }
  }
}

RoomField FieldOfNumber(RoomConfig& config, const std::string& name) {
  for (const RoomField& field : MakeRoomFields(config)) {
    if (NameOf(field) == name && (std::holds_alternative<double*>(field.target) ||
                                  std::holds_alternative<std::optional<double>*>(field.target))) {
      return field;
    }
  }
  throw std::out_of_range("a room has no number \"" + name + "\"");
}

}  // namespace

RoomConfig::RoomConfig() {
  tv.latencyMs = 80.0;
  tv.reflections = {{4.0, -12.0}, {11.0, -15.0}};
  optical.latencyMs = 20.0;
  optical.reflections = {{6.0, -12.0}, {9.0, -14.0}};
}

void CheckRoom(const RoomConfig& config, const std::string& nameForErrors) {
  RoomConfig copy = config;
  for (const RoomField& field : MakeRoomFields(copy)) {
    if (double* const* number = std::get_if<double*>(&field.target)) {
      CheckNumber(field, **number, "", nameForErrors);
    } else if (std::optional<double>* const* optional = std::get_if<std::optional<double>*>(&field.target)) {
      CheckNumber(field, (*optional)->value_or(field.min), "", nameForErrors);
    } else if (std::vector<Reflection>* const* list = std::get_if<std::vector<Reflection>*>(&field.target)) {
      CheckReflections(field, **list, nameForErrors);
    }
  }
}

NumberRange RangeOfNumber(const std::string& name) {
  RoomConfig config;
  const RoomField field = FieldOfNumber(config, name);
  return {field.min, field.max};
}

void SetNumber(RoomConfig& config, const std::string& name, double value) {
  const RoomField field = FieldOfNumber(config, name);
  if (double* const* number = std::get_if<double*>(&field.target)) {
    **number = value;
  } else {
    *std::get<std::optional<double>*>(field.target) = value;
  }
}

double ActualMicrophoneRateHz(const RoomConfig& config) {
  return config.microphoneRateHz * (1.0 + config.rateErrorPpm * 1e-6);
}

bool operator==(const Reflection& a, const Reflection& b) {
  return std::tie(a.delayMs, a.gainDb) == std::tie(b.delayMs, b.gainDb);
}

bool operator==(const PathConfig& a, const PathConfig& b) {
  const auto all = [](const PathConfig& path) {
    return std::tie(path.latencyMs, path.gainDb, path.distanceM, path.reflections, path.rt60S,
                    path.directToReverberantDb);
  };
  return all(a) == all(b);
}

bool operator==(const RoomConfig& a, const RoomConfig& b) {
  const auto all = [](const RoomConfig& room) {
    return std::tie(room.tv, room.optical, room.opticalMuted, room.opticalLockMs, room.microphoneRateHz,
                    room.rateErrorPpm, room.noiseDbfs, room.noiseFile, room.noiseFileGainDb, room.voiceLatencyMs,
                    room.voiceJitterMs, room.voiceLossProbability, room.voiceWindowMs, room.silentAfterMs, room.seed);
  };
  return all(a) == all(b);
}

}  // namespace orvex::sim
