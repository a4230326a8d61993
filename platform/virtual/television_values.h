// The values of a virtual television: names, meanings, units, ranges and defaults.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvex::virtual_tv {

struct TelevisionValue {
  std::string name;  // path below the television's directory
  std::string meaning;
  std::string unit;      // empty: a plain number, or text
  bool isText;           // one line of UTF-8 without control characters; minimum and maximum do not apply
  std::int64_t minimum;  // both bounds are allowed values
  std::int64_t maximum;
  std::string defaultText;
};

// The values that every television has, in the order in which a listing shows them.
const std::vector<TelevisionValue>& TelevisionValues();

// The description of `name`: one of TelevisionValues(), or any further settings key below "settings/", which is a
// 32-bit integer. Empty when there is no such value.
std::optional<TelevisionValue> DescribeTelevisionValue(const std::string& name);

// What is allowed, as a phrase for messages: "an integer from 0 to 100".
std::string ExpectedTelevisionValue(const TelevisionValue& value);

}  // namespace orvex::virtual_tv
