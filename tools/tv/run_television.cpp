// The virtual television that a run takes place on: a directory that is made, filled and, if temporary, removed.
#include "tv/run_television.h"

#include <stdlib.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include <json/reader.h>

#include "orvex/sim/room_json.h"
#include "orvex/sim/truth.h"
#include "television_files.h"
#include "tv/errors.h"
#include "tv/text_files.h"

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

void RequireJsonObject(const std::string& text, const std::string& path) {
  Json::Value value;
  std::string errors;
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  try {
    if (reader->parse(text.data(), text.data() + text.size(), &value, &errors) && value.isObject()) {
      return;
    }
  } catch (const Json::Exception& error) {
    errors = error.what();
  }
  throw UsageError(path + ": expected a JSON object" + (errors.empty() ? "" : "\n" + errors));
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
    RequireJsonObject(faults, options.faultsFile);
  }
  std::optional<sim::RoomConfig> room = options.room.ReadFile();
  m_Television.Create();
  const std::string roomPath = m_Television.PathOf(kRoomFile).string();
  m_Room = options.room.Override(room ? *room : sim::ParseRoom(ReadTextFile(roomPath), roomPath));
  if (!options.room.Empty()) {
    host::ReplaceFile(roomPath, sim::RoomToJson(m_Room));
  }
  if (!options.faultsFile.empty()) {
    host::ReplaceFile(m_Television.PathOf(kFaultsFile), faults);
  }
  if (options.baseDelayMs) {
    m_Television.Set(kDelay, std::to_string(*options.baseDelayMs));
  }
}

std::optional<double> RunTelevision::MisalignmentMs() const {
  try {
    return sim::MisalignmentMs(m_Room, static_cast<double>(m_Television.GetNumber(kDelay)));
  } catch (const host::TelevisionError&) {
    return std::nullopt;
  }
}

}  // namespace orvex::tools
