// The acoustic world as options of the command line.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "options/command.h"
#include "orvex/sim/room_config.h"

namespace orvex::tools {

class RoomOptions {
public:
  // Adds the options; the values arrive in this object, which must outlive `command`.
  void AddTo(Command& command);

  // The file of --room; empty: not given.
  const std::string& GetFile() const { return m_File; }
  // The room of --room, or none. Throws sim::RoomError or UsageError.
  std::optional<sim::RoomConfig> ReadFile() const;
  // `room` with what the command line says.
  sim::RoomConfig Override(sim::RoomConfig room) const;

private:
  std::string m_File;
  std::map<std::string, std::optional<double>> m_Numbers;  // by option name
  std::string m_NoiseDbfs;                                 // a number or "none"; empty: not given
  std::optional<std::uint64_t> m_Seed;
  bool m_OpticalMuted = false;
};

// Reads a room; a noise file that it names is taken from beside it. Throws sim::RoomError or UsageError.
sim::RoomConfig ReadRoomFile(const std::string& path);

}  // namespace orvex::tools
