// Only what is missing is made in a television that is kept; all else lies in a folder beside it while runs last.
#include "tv/run_television.h"

#include <cstdlib>
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

std::string FaultsAsGiven(const std::string& path) {
  std::string text = ReadTextFile(path);
  try {
    static_cast<void>(virtual_tv::ParseFaults(text));
  } catch (const std::runtime_error& problem) {
    throw UsageError(path + ": " + problem.what());
  }
  return text;
}

bool IsKept(const TelevisionOptions& options) {
  const char* const named = std::getenv("ORVEX_TV");
  return !options.directory.empty() || (named != nullptr && *named != '\0');
}

std::filesystem::path DirectoryOf(const TelevisionOptions& options, const ScratchFolder& scratch) {
  if (!IsKept(options)) {
    return scratch / "tv";
  }
  return options.directory.empty() ? virtual_tv::Television::DirectoryFromEnvironment()
                                   : std::filesystem::absolute(options.directory);
}

void CheckTogether(const TelevisionOptions& options) {
  if (options.saveRoom && !IsKept(options)) {
    throw UsageError("--save-room: the television is temporary, expected --tv or ORVEX_TV to name one");
  }
  if (options.faultsFile == kStandardInput && options.room.GetFile() == kStandardInput) {
    throw UsageError("--room and --faults are both standard input, expected a file for one of them");
  }
}

}  // namespace

std::vector<std::string> InputFiles(const TelevisionOptions& options) {
  std::vector<std::string> files;
  for (const std::string& file : {options.room.GetFile(), options.faultsFile}) {
    if (!file.empty()) {
      files.push_back(file);
    }
  }
  return files;
}

TelevisionInput ReadInput(const TelevisionOptions& options) {
  CheckTogether(options);
  return {options.room.ReadFile(), options.faultsFile.empty() ? "" : FaultsAsGiven(options.faultsFile)};
}

RunTelevision::RunTelevision(const TelevisionOptions& options, const TelevisionInput& input)
    : m_Television(DirectoryOf(options, m_Scratch)) {
  Fill(options, input);
}

// Everything is read and checked before the first write.
void RunTelevision::Fill(const TelevisionOptions& options, const TelevisionInput& input) {
  m_Television.Create();
  m_Room = options.room.Override(input.room ? *input.room : ReadRoomFile(m_Television.RoomFile().string()));
  if (options.saveRoom) {
    SaveRoom();
  }
  if (!options.faultsFile.empty()) {
    port::ReplaceFile(FaultsFile(), input.faults);
  }
  if (options.baseDelayMs) {
    m_Television.Set(kDelay, std::to_string(*options.baseDelayMs));
  }
  m_BaseDelayMs = DelayMs();
  Prepare(0);
}

// A noise file within the television is named as from there, so that the directory can be moved.
void RunTelevision::SaveRoom() const {
  sim::RoomConfig room = m_Room;
  const std::filesystem::path relative =
      std::filesystem::path(room.noiseFile).lexically_relative(m_Television.GetDirectory());
  if (!relative.empty() && *relative.begin() != "..") {
    room.noiseFile = relative.string();
  }
  port::ReplaceFile(m_Television.PathOf("room.json"), sim::RoomToJson(room));
}

void RunTelevision::Prepare(std::uint64_t run) const {
  sim::RoomConfig room = m_Room;
  room.seed += run;
  port::ReplaceFile(RoomFile(), sim::RoomToJson(room));
  if (m_BaseDelayMs && DelayMs() != m_BaseDelayMs) {
    m_Television.Set(kDelay, std::to_string(*m_BaseDelayMs));
  }
}

std::vector<std::string> RunTelevision::Environment() const {
  std::vector<std::string> variables{"ORVEX_TV=" + m_Television.GetDirectory().string(),
                                     "ORVEX_TV_ROOM=" + RoomFile().string()};
  if (std::filesystem::exists(FaultsFile())) {
    variables.push_back("ORVEX_TV_FAULTS=" + FaultsFile().string());
  }
  return variables;
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
