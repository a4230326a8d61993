// What a virtual television's faults.json says: platform answers and audio faults to inject.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace orvex::virtual_tv {

constexpr std::size_t kMaximumFaultBytes = 1 << 20;

// What a faults.json can name.
enum class Fault {
  // Operations, which are given an answer.
  kVoiceRegister,
  kVoiceUnregister,
  kVoiceStart,
  kVoiceExtend,
  kVoiceStop,
  kDelayGet,
  kDelaySet,
  kAudioControlDelay,
  kAudioControlCodec,
  kSettingsGet,
  kSettingsSubscribe,
  kSettingsUnsubscribe,
  kWatchdogRegister,
  kWatchdogNotify,
  kSoundGetMute,
  kSoundSetMute,
  kSoundGetVolume,
  kSoundSetVolume,
  kSoundGetSpeaker,
  kTvHdmiInputs,
  kTvActivity,
  kTvAvControl,
  kTvResolution,
  kTvSourceControl,
  kTvSource,
  kEventLogAdd,
  kPcmOpen,
  kMainLoopLateMs,
  // What happens to the sound device when it plays a frame.
  kPcmUnderrunAtFrame,
  kPcmSuspendAtFrame,
  kPcmDisconnectAtFrame,
  kPcmStallAtFrame,
  // Objects that are missing.
  kAudioControl,
  kEventLog,
};

// The file is one JSON object. Its members are an operation and its answer, a fault of the sound device and one or
// several frame numbers, or an object and "absent".
//
// An answer stands in place of the operation's work. It is an integer, given at every call, or an array: the n-th call
// gets the n-th entry; null, and a call after the last entry, leave the operation to its work.
struct FaultTable {
  struct Answer {
    bool always = false;                    // `calls` has one entry then
    std::vector<std::optional<int>> calls;  // by number of the call
  };
  std::map<Fault, Answer> answers;
  std::map<Fault, std::vector<std::uint64_t>> frames;  // ascending
  std::set<Fault> absent;
};

// Reads the file's text. Throws std::runtime_error that names key, value and what was expected.
FaultTable ParseFaults(const std::string& text);

}  // namespace orvex::virtual_tv
