// The table of the virtual television's values, and how their texts are read.
#include "virtual/television_values.h"

#include <algorithm>
#include <initializer_list>
#include <limits>

#include "linux/small_files.h"

#include "linux/no_destroy.h"

namespace orvex::virtual_tv {
namespace {

constexpr std::int64_t kMin32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kMax32 = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kMaxUnsigned32 = std::numeric_limits<std::uint32_t>::max();
// Literals only: values are read before this file's own static objects would exist.
constexpr const char* kSettingsFolder = "settings/";

}  // namespace

const std::vector<TelevisionValue>& TelevisionValues() {
  static const port::NoDestroy<const std::vector<TelevisionValue>> values(std::initializer_list<TelevisionValue>{
      {"settings/db/device-detector-service/optical_change_flag", "the optical output has changed; a write ends a run",
       "", false, kMin32, kMax32, "0"},
      {"settings/db/menu/tessar/homedatacontrol/defaultdisclaimeragree",
       "the user agrees that records are collected: 1 yes, 0 no", "", false, kMin32, kMax32, "0"},
      {"sound/mute", "the TV speaker is silent: 1 yes, 0 no", "", false, 0, 1, "0"},
      {"sound/volume", "master volume", "", false, 0, 100, "15"},
      {"sound/speaker", "selected sound output: 0 the TV speaker, else another one", "", false, kMin32, kMax32, "0"},
      {"delay/spdif", "delay of the optical output; more makes it later", "ms", false, 0, kMaxUnsigned32, "100"},
      {"tv/brand", "brand of the connected device", "", true, 0, 0, "Example"},
      {"tv/device_type", "kind of the connected device, the television's number", "", false, kMin32, kMax32, "1"},
      {"tv/source", "current input source, the television's number", "", false, kMin32, kMax32, "1"},
      {"tv/resolution", "resolution of the picture, the television's number", "", false, kMin32, kMax32, "6"},
      {"tv/frequency", "frequency of the picture", "Hz", false, kMin32, kMax32, "60"},
      {"tv/codec", "codec of the optical output, the television's number", "", false, kMin32, kMax32, "0"},
      {"tv/hdmi_inputs", "number of HDMI inputs", "", false, 0, kMax32, "4"},
  });
  return *values;
}

std::optional<TelevisionValue> DescribeTelevisionValue(const std::string& name) {
  const auto& values = TelevisionValues();
  const auto known =
      std::find_if(values.begin(), values.end(), [&](const TelevisionValue& value) { return value.name == name; });
  if (known != values.end()) {
    return *known;
  }
  if (name.rfind(kSettingsFolder, 0) == 0 && port::IsPlainPath(name)) {
    return TelevisionValue{name, "settings key", "", false, kMin32, kMax32, "0"};
  }
  return std::nullopt;
}

std::string ExpectedTelevisionValue(const TelevisionValue& value) {
  if (value.isText) {
    return "one line of UTF-8 text without control characters";
  }
  const std::string unit = value.unit.empty() ? "" : " " + value.unit;
  return "an integer from " + std::to_string(value.minimum) + " to " + std::to_string(value.maximum) + unit;
}

}  // namespace orvex::virtual_tv
