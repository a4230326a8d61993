// Most options are rows of a table: a name, a unit, a text and what the value does to a room.
#include "tv/room_options.h"

#include <filesystem>

#include "orvex/sim/room_json.h"
#include "tv/text_files.h"

namespace orvex::tools {
namespace {

using sim::RoomConfig;

struct NumberOption {
  const char* name;
  const char* unit;
  const char* text;
  void (*apply)(RoomConfig& room, double value);
};

constexpr NumberOption kNumberOptions[] = {
    {"--tv-latency", "MS", "latency of the television's speaker", [](RoomConfig& r, double v) { r.tv.latencyMs = v; }},
    {"--optical-latency", "MS", "own latency of the device at the optical output",
     [](RoomConfig& r, double v) { r.optical.latencyMs = v; }},
    {"--gain-tv", "DB", "gain from the speaker to the microphone", [](RoomConfig& r, double v) { r.tv.gainDb = v; }},
    {"--gain-optical", "DB", "gain from the external device to the microphone",
     [](RoomConfig& r, double v) { r.optical.gainDb = v; }},
    {"--distance", "M", "from both sounds to the microphone",
     [](RoomConfig& r, double v) { r.tv.distanceM = r.optical.distanceM = v; }},
    {"--rt60", "S", "reverberation time; 0: none", [](RoomConfig& r, double v) { r.tv.rt60S = r.optical.rt60S = v; }},
    {"--drr", "DB", "direct sound over reverberation",
     [](RoomConfig& r, double v) { r.tv.directToReverberantDb = r.optical.directToReverberantDb = v; }},
    {"--lock", "MS", "what the optical receiver loses at the start of a sound",
     [](RoomConfig& r, double v) { r.opticalLockMs = v; }},
    {"--rate", "HZ", "rate of the microphone", [](RoomConfig& r, double v) { r.microphoneRateHz = v; }},
    {"--rate-error", "PPM", "error of that rate; positive: faster",
     [](RoomConfig& r, double v) { r.rateErrorPpm = v; }},
    {"--loss", "P", "probability that a block of the remote is lost",
     [](RoomConfig& r, double v) { r.voiceLossProbability = v; }},
    {"--jitter", "MS", "most that a block of the remote comes late",
     [](RoomConfig& r, double v) { r.voiceJitterMs = v; }},
};

constexpr const char kNoNoise[] = "none";

}  // namespace

void RoomOptions::AddTo(Command& command) {
  const char* const kGroup = "Room";
  command.Add("--room", m_File, value::File(), "room.json to begin with; -: standard input").InGroup(kGroup);
  for (const NumberOption& option : kNumberOptions) {
    command.Add(option.name, m_Numbers[option.name], value::Number(option.unit), option.text).InGroup(kGroup);
  }
  command
      .Add("--noise", m_NoiseDbfs, value::OrWord(value::Number("DBFS"), kNoNoise),
           "noise at the microphone, RMS of full scale, or \"none\"")
      .InGroup(kGroup);
  command.AddFlag("--optical-muted", m_OpticalMuted, "the external device is silent").InGroup(kGroup);
  command.Add("--seed", m_Seed, value::WholeNumber("N"), "of everything random").InGroup(kGroup);
}

std::optional<RoomConfig> RoomOptions::ReadFile() const {
  return m_File.empty() ? std::nullopt : std::optional<RoomConfig>(ReadRoomFile(m_File));
}

RoomConfig RoomOptions::Override(RoomConfig room) const {
  for (const NumberOption& option : kNumberOptions) {
    const auto given = m_Numbers.find(option.name);
    if (given != m_Numbers.end() && given->second) {
      option.apply(room, *given->second);
    }
  }
  if (!m_NoiseDbfs.empty()) {
    room.noiseDbfs = m_NoiseDbfs == kNoNoise ? std::nullopt : std::optional<double>(std::stod(m_NoiseDbfs));
  }
  room.seed = m_Seed.value_or(room.seed);
  room.opticalMuted = room.opticalMuted || m_OpticalMuted;
  sim::CheckRoom(room, "command line");
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
