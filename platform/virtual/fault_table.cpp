// Reads the text of a faults.json.
#include "virtual/fault_table.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string_view>

#include "linux/json_text.h"

namespace orvex::virtual_tv {
namespace {

[[noreturn]] void Refuse(const std::string& key, const Json::Value& value, const std::string& expected) {
  throw std::runtime_error("\"" + key + "\": " + port::CompactJson(value) + ": expected " + expected);
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

void TakeAnswer(FaultTable& table, Fault fault, const std::string& key, const Json::Value& value) {
  table.answers[fault] = ParseAnswer(key, value);
}

void TakeFrames(FaultTable& table, Fault fault, const std::string& key, const Json::Value& value) {
  table.frames[fault] = ParseFrames(key, value);
}

void TakeAbsence(FaultTable& table, Fault fault, const std::string& key, const Json::Value& value) {
  if (value != "absent") {
    Refuse(key, value, "\"absent\"");
  }
  table.absent.insert(fault);
}

struct NamedFault {
  std::string_view name;
  Fault fault;
  void (*take)(FaultTable& table, Fault fault, const std::string& key, const Json::Value& value);
};

constexpr NamedFault kFaults[] = {
    {"voice.register", Fault::kVoiceRegister, TakeAnswer},
    {"voice.unregister", Fault::kVoiceUnregister, TakeAnswer},
    {"voice.start", Fault::kVoiceStart, TakeAnswer},
    {"voice.extend", Fault::kVoiceExtend, TakeAnswer},
    {"voice.stop", Fault::kVoiceStop, TakeAnswer},
    {"delay.get", Fault::kDelayGet, TakeAnswer},
    {"delay.set", Fault::kDelaySet, TakeAnswer},
    {"audio_control.delay", Fault::kAudioControlDelay, TakeAnswer},
    {"audio_control.codec", Fault::kAudioControlCodec, TakeAnswer},
    {"settings.get", Fault::kSettingsGet, TakeAnswer},
    {"settings.subscribe", Fault::kSettingsSubscribe, TakeAnswer},
    {"settings.unsubscribe", Fault::kSettingsUnsubscribe, TakeAnswer},
    {"watchdog.register", Fault::kWatchdogRegister, TakeAnswer},
    {"watchdog.notify", Fault::kWatchdogNotify, TakeAnswer},
    {"sound.get_mute", Fault::kSoundGetMute, TakeAnswer},
    {"sound.set_mute", Fault::kSoundSetMute, TakeAnswer},
    {"sound.get_volume", Fault::kSoundGetVolume, TakeAnswer},
    {"sound.set_volume", Fault::kSoundSetVolume, TakeAnswer},
    {"sound.get_speaker", Fault::kSoundGetSpeaker, TakeAnswer},
    {"tv.hdmi_inputs", Fault::kTvHdmiInputs, TakeAnswer},
    {"tv.activity", Fault::kTvActivity, TakeAnswer},
    {"tv.av_control", Fault::kTvAvControl, TakeAnswer},
    {"tv.resolution", Fault::kTvResolution, TakeAnswer},
    {"tv.source_control", Fault::kTvSourceControl, TakeAnswer},
    {"tv.source", Fault::kTvSource, TakeAnswer},
    {"event_log.add", Fault::kEventLogAdd, TakeAnswer},
    {"pcm.open", Fault::kPcmOpen, TakeAnswer},
    {"main_loop.late_ms", Fault::kMainLoopLateMs, TakeAnswer},
    {"pcm.underrun_at_frame", Fault::kPcmUnderrunAtFrame, TakeFrames},
    {"pcm.suspend_at_frame", Fault::kPcmSuspendAtFrame, TakeFrames},
    {"pcm.disconnect_at_frame", Fault::kPcmDisconnectAtFrame, TakeFrames},
    {"pcm.stall_at_frame", Fault::kPcmStallAtFrame, TakeFrames},
    {"audio_control", Fault::kAudioControl, TakeAbsence},
    {"event_log", Fault::kEventLog, TakeAbsence},
};
static_assert(std::size(kFaults) == static_cast<std::size_t>(Fault::kEventLog) + 1, "every fault has a name");

void TakeMember(FaultTable& table, const std::string& key, const Json::Value& value) {
  const auto* const known =
      std::find_if(std::begin(kFaults), std::end(kFaults), [&](const NamedFault& fault) { return fault.name == key; });
  if (known == std::end(kFaults)) {
    Refuse(key, value, "a known operation, such as \"voice.start\"");
  }
  known->take(table, known->fault, key, value);
}

}  // namespace

FaultTable ParseFaults(const std::string& text) {
  const Json::Value root = port::ParseJsonObject(text, "a JSON object");
  FaultTable table;
  for (const std::string& key : root.getMemberNames()) {
    TakeMember(table, key, root[key]);
  }
  return table;
}

}  // namespace orvex::virtual_tv
