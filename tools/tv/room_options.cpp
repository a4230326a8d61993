// Most options are rows of a table: a name, a unit, a text and the numbers of the room that the value is for.
#include "tv/room_options.h"

#include <filesystem>
#include <vector>

#include "orvex/sim/room_json.h"
#include "tv/text_files.h"

namespace orvex::tools {
namespace {

using sim::RoomConfig;

struct NumberOption {
  const char* name;
  const char* unit;
  const char* text;
  std::vector<const char*> numbers;  // of the room, which it sets
};

const std::vector<NumberOption>& NumberOptions() {
  static const std::vector<NumberOption> options = {
      {"--tv-latency", "MS", "latency of the television's speaker", {"tv.latency_ms"}},
      {"--optical-latency", "MS", "own latency of the device at the optical output", {"optical.latency_ms"}},
      {"--gain-tv", "DB", "gain from the speaker to the microphone", {"tv.gain_db"}},
      {"--gain-optical", "DB", "gain from the external device to the microphone", {"optical.gain_db"}},
      {"--distance", "M", "from both sounds to the microphone", {"tv.distance_m", "optical.distance_m"}},
      {"--rt60", "S", "reverberation time; 0: none", {"tv.rt60_s", "optical.rt60_s"}},
      {"--drr",
       "DB",
       "direct sound over reverberation",
       {"tv.direct_to_reverberant_db", "optical.direct_to_reverberant_db"}},
      {"--lock", "MS", "what the optical receiver loses at the start of a sound", {"optical.lock_ms"}},
      {"--rate", "HZ", "rate of the microphone", {"microphone.rate_hz"}},
      {"--rate-error", "PPM", "error of that rate; positive: faster", {"microphone.rate_error_ppm"}},
      {"--loss", "P", "probability that a block of the remote is lost", {"voice.loss_probability"}},
      {"--jitter", "MS", "most that a block of the remote comes late", {"voice.jitter_ms"}},
  };
  return options;
}

// A number in the range that a room has for `name`.
ValueKind NumberOf(const char* name, const char* unit) {
  const sim::NumberRange range = sim::RangeOfNumber(name);
  return value::Number(unit, range.minimum, range.maximum);
}

constexpr const char kNoNoise[] = "none";

}  // namespace

void RoomOptions::AddTo(Command& command) {
  const char* const kGroup = "Room";
  command.Add("--room", m_File, value::File(), "room.json to begin with; -: standard input").InGroup(kGroup);
  for (const NumberOption& option : NumberOptions()) {
    command.Add(option.name, m_Numbers[option.name], NumberOf(option.numbers.front(), option.unit), option.text)
        .InGroup(kGroup);
  }
  command
      .Add("--noise", m_NoiseDbfs, value::OrWord(NumberOf("microphone.noise_dbfs", "DBFS"), kNoNoise),
           "noise at the microphone, RMS of full scale, or \"none\"")
      .InGroup(kGroup);
  command.AddFlag("--optical-muted", m_OpticalMuted, "the external device is silent").InGroup(kGroup);
  command.Add("--seed", m_Seed, value::WholeNumber("N"), "of everything random").InGroup(kGroup);
}

std::optional<RoomConfig> RoomOptions::ReadFile() const {
  return m_File.empty() ? std::nullopt : std::optional<RoomConfig>(ReadRoomFile(m_File));
}

RoomConfig RoomOptions::Override(RoomConfig room) const {
  for (const NumberOption& option : NumberOptions()) {
    const auto given = m_Numbers.find(option.name);
    for (const char* const number : option.numbers) {
      if (given != m_Numbers.end() && given->second) {
        sim::SetNumber(room, number, *given->second);
      }
    }
  }
  if (!m_NoiseDbfs.empty()) {
    room.noiseDbfs = m_NoiseDbfs == kNoNoise ? std::nullopt : std::optional<double>(std::stod(m_NoiseDbfs));
  }
  room.seed = m_Seed.value_or(room.seed);
  room.opticalMuted = room.opticalMuted || m_OpticalMuted;
  return room;
}

RoomConfig ReadRoomFile(const std::string& path) {
  RoomConfig room = sim::ParseRoom(ReadTextFile(path), path);
  if (!room.noiseFile.empty()) {
    room.noiseFile = std::filesystem::absolute(std::filesystem::path(path).parent_path() / room.noiseFile).string();
  }
  return room;
}

}  // namespace orvex::tools
