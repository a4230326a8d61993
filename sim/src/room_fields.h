// One table of a room's values, with their names in JSON and their ranges: for checking, reading and writing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "orvex/sim/room_config.h"

namespace orvex::sim {

// Points to the value within the room from which the table was made.
using RoomFieldTarget =
    std::variant<double*, std::optional<double>*, bool*, std::string*, std::uint64_t*, std::vector<Reflection>*>;

struct RoomField {
  const char* section;  // empty: the topmost object
  const char* key;
  RoomFieldTarget target;
  double min = 0.0;  // of numbers
  double max = 0.0;
};

// The fields of `config`, which must live as long as the table is used.
std::vector<RoomField> MakeRoomFields(RoomConfig& config);

// A reflection's values, named within its object.
std::vector<RoomField> MakeReflectionFields(Reflection& reflection);

// "section.key", or the key alone in the topmost object.
std::string NameOf(const RoomField& field);

// "a number from 0 to 1000"
std::string RangeOf(const RoomField& field);

// An error about one value, in the form that all of them have.
RoomError MakeValueError(const std::string& nameForErrors, const std::string& name, const std::string& value,
                         const std::string& expected);

// Whether `value` lies in the field's range; false for NaN.
bool IsInRange(const RoomField& field, double value);

}  // namespace orvex::sim
