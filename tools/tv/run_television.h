// The virtual television that runs take place on, and the room and the faults that hold for them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "orvex/sim/room_config.h"
#include "tv/room_options.h"
#include "tv/scratch_folder.h"
#include "virtual/television.h"

namespace orvex::tools {

struct TelevisionOptions {
  std::string directory;  // empty: what ORVEX_TV names, else a temporary one
  std::optional<std::uint32_t> baseDelayMs;
  std::string faultsFile;
  RoomOptions room;
  bool saveRoom = false;
};

// What the options name, read and checked.
struct TelevisionInput {
  std::optional<sim::RoomConfig> room;
  std::string faults;
};

// The files that ReadInput() reads; "-" is standard input.
std::vector<std::string> InputFiles(const TelevisionOptions& options);

// Throws UsageError or sim::RoomError.
TelevisionInput ReadInput(const TelevisionOptions& options);

// What the options do not say is as on an existing television, and the default on a new one. The television's own
// room.json and faults.json stay as they are.
class RunTelevision {
public:
  // Throws sim::RoomError or virtual_tv::TelevisionError; a television that existed is then unchanged, its
  // missing files aside.
  RunTelevision(const TelevisionOptions& options, const TelevisionInput& input);

  // Before the n-th run, from 0: the delay is again that of before the first run, and the room has the n-th seed after
  // its own.
  void Prepare(std::uint64_t run) const;
  // For the service that runs on it, "NAME=value" each.
  std::vector<std::string> Environment() const;

  // With the seed of the first run.
  const sim::RoomConfig& GetRoom() const { return m_Room; }
  const virtual_tv::Television& Get() const { return m_Television; }
  std::filesystem::path EventFile() const { return m_Television.PathOf("events.jsonl"); }
  std::filesystem::path LogFile() const { return m_Television.PathOf("service.log"); }
  std::filesystem::path RoomFile() const { return m_Scratch / "room.json"; }
  std::filesystem::path FaultsFile() const { return m_Scratch / "faults.json"; }
  // The optical output's delay in force; empty when it cannot be read.
  std::optional<std::int64_t> DelayMs() const;
  // True difference between optical output and speaker with that delay in force; empty when the delay is unknown.
  std::optional<double> MisalignmentMs(std::optional<std::int64_t> delayMs) const;

private:
  void Fill(const TelevisionOptions& options, const TelevisionInput& input);
  void SaveRoom() const;

  ScratchFolder m_Scratch;
  virtual_tv::Television m_Television;
  sim::RoomConfig m_Room;
  std::optional<std::int64_t> m_BaseDelayMs;  // empty: it cannot be read
};

}  // namespace orvex::tools
