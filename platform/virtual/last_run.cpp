#include "virtual/last_run.h"

#include <json/value.h>

#include <cmath>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <system_error>

#include "linux/json_text.h"
#include "linux/no_destroy.h"
#include "linux/small_files.h"
#include "linux/utc_time.h"
#include "virtual/television.h"

namespace orvex::virtual_tv {
namespace {

constexpr char kFile[] = "last_run.json";
constexpr char kDifference[] = "> \033[32mdiff time = ";
constexpr char kEndRecord[] = "> \033[32mtext = {result=";

struct Run {
  std::mutex mutex;  // guards what stands below
  bool hasBegun = false;
  std::string begun;
  std::optional<std::int64_t> delayBeforeMs;
  double differenceMs = 0.0;  // 0: none was found
};

Run& TheRun() {
  static const port::NoDestroy<Run> run;
  return *run;
}

std::optional<std::int64_t> DelayMs() {
  try {
    return Television::Instance().GetNumber("delay/spdif");
  } catch (const TelevisionError&) {
    return std::nullopt;
  }
}

Json::Value OrNull(std::optional<std::int64_t> value) {
  return value ? Json::Value(Json::Int64{*value}) : Json::Value();
}

// What follows the last `key` up to the next ';' or '}'.
std::string FieldOf(const std::string& record, const std::string& key) {
  const std::size_t place = record.rfind(key + "=");
  if (place == std::string::npos) {
    return "";
  }
  const std::size_t begin = place + key.size() + 1;
  return record.substr(begin, record.find_first_of(";}", begin) - begin);
}

void Write(const Run& run, const std::string& endRecord) {
  Json::Value json(Json::objectValue);
  json["begun"] = run.begun;
  json["ended"] = port::UtcNow();
  json["result"] = FieldOf(endRecord, "result");
  json["terminate"] = FieldOf(endRecord, "terminate");
  json["duration_ms"] = std::atoi(FieldOf(endRecord, "du").c_str());
  json["difference_ms"] = run.differenceMs == 0.0 ? Json::Value() : Json::Value(run.differenceMs);
  json["delay_before_ms"] = OrNull(run.delayBeforeMs);
  json["delay_after_ms"] = OrNull(DelayMs());
  try {
    port::ReplaceFile(Television::Instance().PathOf(kFile), port::CompactJson(json) + "\n");
  } catch (const std::system_error&) {
    // The log and the telemetry tell the same.
  }
}

}  // namespace

void BeginLastRun() {
  Run& run = TheRun();
  const std::lock_guard<std::mutex> lock(run.mutex);
  std::error_code ignored;
  std::filesystem::remove(Television::Instance().PathOf(kFile), ignored);
  run.begun = port::UtcNow();
  run.delayBeforeMs = DelayMs();
  run.hasBegun = true;
}

void NoteForLastRun(const std::string& logText) {
  const std::size_t difference = logText.find(kDifference);
  const std::size_t endRecord = logText.find(kEndRecord);
  if (difference == std::string::npos && endRecord == std::string::npos) {
    return;
  }
  Run& run = TheRun();
  const std::lock_guard<std::mutex> lock(run.mutex);
  if (difference != std::string::npos) {
    const double seconds = std::strtod(logText.c_str() + difference + sizeof kDifference - 1, nullptr);
    run.differenceMs = std::round(seconds * 1e4) / 10.0;  // logged with four digits
  } else if (run.hasBegun) {
    Write(run, logText.substr(endRecord));
  }
}

}  // namespace orvex::virtual_tv
