// Reads the text of a faults.json.
#include "virtual/fault_table.h"

#include <json/json.h>

#include <algorithm>
#include <stdexcept>

#include "virtual/television_json.h"

namespace orvex::virtual_tv {
namespace {

// Operations that may be answered by the file, and what is asked of each entry.
const std::set<std::string>& AnswerKeys() {
  static const auto& keys = *new std::set<std::string>{
      "voice.register",      "voice.unregister",   "voice.start",         "voice.extend",
      "voice.stop",          "delay.get",          "delay.set",           "settings.get",
      "watchdog.notify",     "settings.subscribe", "watchdog.register",   "settings.unsubscribe",
      "sound.get_mute",      "sound.set_mute",     "sound.get_volume",    "sound.set_volume",
      "sound.get_speaker",   "event_log.add",      "tv.hdmi_inputs",      "tv.activity",
      "tv.av_control",       "tv.resolution",      "tv.source_control",   "tv.source",
      "audio_control.delay", "pcm.open",           "audio_control.codec", "main_loop.late_ms"};
  return keys;
}

const std::set<std::string>& FrameKeys() {
  static const auto& keys = *new std::set<std::string>{"pcm.underrun_at_frame", "pcm.suspend_at_frame",
                                                       "pcm.disconnect_at_frame", "pcm.stall_at_frame"};
  return keys;
}

const std::set<std::string>& ObjectKeys() {
  static const auto& keys = *new std::set<std::string>{"audio_control", "event_log"};
  return keys;
}

std::string OneLine(const Json::Value& value) {
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  return Json::writeString(writer, value);
}

[[noreturn]] void Refuse(const std::string& key, const Json::Value& value, const std::string& expected) {
  throw std::runtime_error("\"" + key + "\": " + OneLine(value) + ": expected " + expected);
}

FaultTable::Answer ParseAnswer(const std::string& key, const Json::Value& value) {
  const std::string expected = "a 32-bit integer, or an array of them with null for a call that is left alone";
  if (value.isInt()) {
    return {true, {value.asInt()}};
  }
  if (!value.isArray()) {
    Refuse(key, value, expected);
  }
  FaultTable::Answer answer;
  for (const Json::Value& entry : value) {
    if (!entry.isNull() && !entry.isInt()) {
      Refuse(key, value, expected);
    }
    answer.calls.push_back(entry.isNull() ? std::nullopt : std::optional<int>(entry.asInt()));
  }
  return answer;
}

std::vector<std::uint64_t> ParseFrames(const std::string& key, const Json::Value& value) {
  std::vector<std::uint64_t> frames;
  const auto take = [&](const Json::Value& entry) {
    if (!entry.isUInt64()) {
      Refuse(key, value, "a frame number from 0 on, or an array of them");
    }
    frames.push_back(entry.asUInt64());
  };
  if (value.isArray()) {
    std::for_each(value.begin(), value.end(), take);
  } else {
    take(value);
  }
  std::sort(frames.begin(), frames.end());
  return frames;
}

void TakeMember(FaultTable& table, const std::string& key, const Json::Value& value) {
  if (AnswerKeys().count(key) != 0) {
    table.answers[key] = ParseAnswer(key, value);
  } else if (FrameKeys().count(key) != 0) {
    table.frames[key] = ParseFrames(key, value);
  } else if (ObjectKeys().count(key) == 0) {
    Refuse(key, value, "a known operation, such as \"voice.start\"");
  } else if (value != "absent") {
    Refuse(key, value, "\"absent\"");
  } else {
    table.absent.insert(key);
  }
}

}  // namespace

FaultTable ParseFaults(const std::string& text) {
  const Json::Value root = ParseJsonObject(text, "a JSON object");
  FaultTable table;
  for (const std::string& key : root.getMemberNames()) {
    TakeMember(table, key, root[key]);
  }
  return table;
}

}  // namespace orvex::virtual_tv
