// A temporary directory is removed at the end. In one that a person names, only what is missing is made.
#include "tv/run_television.h"

#include <stdlib.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "linux/small_files.h"
#include "options/errors.h"
#include "orvex/sim/room_json.h"
#include "orvex/sim/truth.h"
#include "tv/text_files.h"
#include "virtual/fault_table.h"

namespace orvex::tools {
namespace {

constexpr const char kDelay[] = "delay/spdif";
constexpr const char kRoomFile[] = "room.json";
constexpr const char kFaultsFile[] = "faults.json";

std::filesystem::path MakeTemporaryFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "orvex_tv_XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    throw CommandError(pattern + ": cannot be made: " + std::strerror(errno));
  }
  return pattern;
}

void CheckFaults(const std::string& text, const std::string& path) {
  try {
    static_cast<void>(virtual_tv::ParseFaults(text));
  } catch (const std::runtime_error& problem) {
    throw UsageError(path + ": " + problem.what());
  }
}

}  // namespace

RunTelevision::RunTelevision(const TelevisionOptions& options)
    : m_IsTemporary(options.directory.empty()),
      m_Television(m_IsTemporary ? MakeTemporaryFolder() : std::filesystem::absolute(options.directory)) {
  try {
    Prepare(options);
  } catch (...) {
    if (m_IsTemporary) {
      std::error_code ignored;
      std::filesystem::remove_all(m_Television.GetDirectory(), ignored);
    }
    throw;
  }
}

RunTelevision::~RunTelevision() {
  if (m_IsTemporary) {
    std::error_code ignored;
    std::filesystem::remove_all(m_Television.GetDirectory(), ignored);
  }
}

// Everything is read and checked before the first write.
void RunTelevision::Prepare(const TelevisionOptions& options) {
  std::string faults;
  if (!options.faultsFile.empty()) {
    faults = ReadTextFile(options.faultsFile);
    CheckFaults(faults, options.faultsFile);
  }
  std::optional<sim::RoomConfig> room = options.room.ReadFile();
  m_Television.Create();
  const std::string roomPath = m_Television.PathOf(kRoomFile).string();
  m_Room = options.room.Override(room ? *room : sim::ParseRoom(ReadTextFile(roomPath), roomPath));
  if (!options.room.Empty()) {
    port::ReplaceFile(roomPath, sim::RoomToJson(m_Room));
  }
  if (!options.faultsFile.empty()) {
    port::ReplaceFile(m_Television.PathOf(kFaultsFile), faults);
  }
  if (options.baseDelayMs) {
    m_Television.Set(kDelay, std::to_string(*options.baseDelayMs));
  }
}

std::optional<std::int64_t> RunTelevision::DelayMs() const {
  try {
    return m_Television.GetNumber(kDelay);
  } catch (const virtual_tv::TelevisionError&) {
    return std::nullopt;
  }
}

std::optional<double> RunTelevision::MisalignmentMs(std::optional<std::int64_t> delayMs) const {
  return delayMs ? std::optional<double>(sim::MisalignmentMs(m_Room, static_cast<double>(*delayMs))) : std::nullopt;
}

}  // namespace orvex::tools
