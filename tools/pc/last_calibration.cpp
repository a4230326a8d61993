#include "pc/last_calibration.h"

#include <cstdio>
#include <exception>

#include "linux/json_text.h"
#include "linux/small_files.h"
#include "linux/utc_time.h"
#include "pc/calibration_report.h"
#include "pipewire/client/pc_config.h"

namespace orvex::tools {
namespace {

constexpr char kResultName[] = "last_calibration.json";
constexpr std::size_t kMaximumResultBytes = 64 * 1024;

}  // namespace

void KeepLastCalibration(const Calibration& calibration) {
  try {
    Json::Value value = port::ParseJson(CalibrationJson(calibration));
    value["time_utc"] = port::UtcNow();
    port::ReplaceFile(pipewire::StateFolder() / kResultName, port::CompactJson(value) + "\n");
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "orvex-pc: the result is not kept for \"orvex-pc status\": %s\n", problem.what());
  }
}

Json::Value LastCalibration() {
  try {
    Json::Value last = port::ParseJsonObject(
        port::ReadSmallFile(pipewire::StateFolder() / kResultName, kMaximumResultBytes), "a JSON object");
    return last["verdict"].isString() && last["time_utc"].isString() ? last : Json::Value();
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace orvex::tools
