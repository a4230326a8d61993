// The virtual television that a run takes place on: a directory that is made, filled and, if temporary, removed.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "orvex/sim/room_config.h"
#include "tv/room_options.h"
#include "virtual/television.h"

namespace orvex::tools {

struct TelevisionOptions {
  std::string directory;  // empty: a temporary one
  std::optional<std::uint32_t> baseDelayMs;
  std::string faultsFile;
  RoomOptions room;
};

// What the options do not say stays as it is on an existing television, and is the default on a new one.
class RunTelevision {
public:
  // Throws UsageError, sim::RoomError or virtual_tv::TelevisionError; a television that existed is then unchanged, its
  // missing files aside.
  explicit RunTelevision(const TelevisionOptions& options);
  ~RunTelevision();
  RunTelevision(const RunTelevision&) = delete;
  RunTelevision& operator=(const RunTelevision&) = delete;

  const virtual_tv::Television& Get() const { return m_Television; }
  std::string EventFile() const { return m_Television.PathOf("events.jsonl").string(); }
  // The optical output's delay in force; empty when it cannot be read.
  std::optional<std::int64_t> DelayMs() const;
  // True difference between optical output and speaker with that delay in force; empty when the delay is unknown.
  std::optional<double> MisalignmentMs(std::optional<std::int64_t> delayMs) const;

private:
  void Prepare(const TelevisionOptions& options);

  bool m_IsTemporary;
  virtual_tv::Television m_Television;
  sim::RoomConfig m_Room;
};

}  // namespace orvex::tools
