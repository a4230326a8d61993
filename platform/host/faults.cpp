// Reads faults.json and counts the calls.
#include "faults.h"

#include <json/json.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "report.h"
#include "television.h"
#include "television_files.h"

namespace orvex::host {
namespace {

constexpr std::size_t kMaximumFileBytes = 1 << 20;

// Operations that may be answered by the file, and what is asked of each entry.
const std::set<std::string>& AnswerKeys() {
  static const auto& keys = *new std::set<std::string>{
      "voice.register",      "voice.unregister",   "voice.start",        "voice.extend",
      "voice.stop",          "delay.get",          "delay.set",          "settings.get",
      "watchdog.notify",     "settings.subscribe", "watchdog.register",  "settings.unsubscribe",
      "sound.get_mute",      "sound.set_mute",     "sound.get_volume",   "sound.set_volume",
      "sound.get_speaker",   "event_log.add",      "tv.hdmi_inputs",     "tv.activity",
      "tv.av_control",       "tv.resolution",      "tv.source_control",  "tv.source",
      "audio_control.delay", "pcm.open",           "audio_control.codec"};
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

FaultTable ReadFaults(const std::filesystem::path& file) {
  try {
    const std::string text = ReadSmallFile(file, kMaximumFileBytes);
    if (text.size() > kMaximumFileBytes) {
      throw std::runtime_error("too long: expected at most 1 MiB");
    }
    return ParseFaults(text);
  } catch (const std::system_error& problem) {
    if (problem.code().value() != ENOENT && problem.code().value() != ENOTDIR) {
      ReportProblem("cannot read " + file.string() + ": " + problem.code().message());
    }
  } catch (const std::exception& problem) {
    ReportProblem(file.string() + ": " + problem.what() + "; no faults are injected");
  }
  return {};
}

}  // namespace

FaultTable ParseFaults(const std::string& text) {
  Json::CharReaderBuilder builder;
  Json::CharReaderBuilder::strictMode(&builder.settings_);
  const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
  Json::Value root;
  Json::String errors;
  if (!reader->parse(text.data(), text.data() + text.size(), &root, &errors)) {
    std::replace(errors.begin(), errors.end(), '\n', ' ');
    throw std::runtime_error("expected a JSON object: " + errors);
  }
  if (!root.isObject()) {
    throw std::runtime_error("expected a JSON object, not an array");
  }
  FaultTable table;
  for (const std::string& key : root.getMemberNames()) {
    TakeMember(table, key, root[key]);
  }
  return table;
}

Faults::Faults(std::filesystem::path file) : m_File(std::move(file)), m_Table(ReadFaults(m_File)) {}

Faults& Faults::Instance() {
  static auto& faults = *new Faults(Television::Instance().PathOf("faults.json"));
  return faults;
}

void Faults::Reload() {
  FaultTable table = ReadFaults(m_File);
  const std::lock_guard<std::mutex> lock(m_Mutex);
  m_Table = std::move(table);
  m_CallCounts.clear();
}

std::optional<int> Faults::Next(const std::string& operation) {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  const auto answer = m_Table.answers.find(operation);
  if (answer == m_Table.answers.end()) {
    return std::nullopt;
  }
  if (answer->second.always) {
    return answer->second.calls.front();
  }
  const std::size_t call = m_CallCounts[operation]++;
  return call < answer->second.calls.size() ? answer->second.calls[call] : std::nullopt;
}

std::vector<std::uint64_t> Faults::Frames(const std::string& fault) const {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  const auto frames = m_Table.frames.find(fault);
  return frames == m_Table.frames.end() ? std::vector<std::uint64_t>{} : frames->second;
}

bool Faults::IsAbsent(const std::string& object) const {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  return m_Table.absent.count(object) != 0;
}

}  // namespace orvex::host
