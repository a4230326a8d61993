// The virtual television's directory: where it is, how it is made, how values are read and replaced.
#include "virtual/television.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <functional>
#include <system_error>

#include "linux/no_destroy.h"
#include "linux/number_text.h"
#include "linux/printable_text.h"
#include "linux/small_files.h"

namespace orvex::virtual_tv {
namespace {

namespace fs = std::filesystem;
using Cause = TelevisionError::Cause;

constexpr std::size_t kMaximumValueBytes = 4096;
const char* const kQueriesFolder = "tv";
const char* const kRoomFile = "room.json";
// Every property of the room at the model's default.
const char* const kDefaultRoom = "{}\n";

std::optional<fs::path> EnvironmentPath(const char* variable) {
  const char* const text = std::getenv(variable);
  return text != nullptr && *text != '\0' ? std::optional<fs::path>(text) : std::nullopt;
}

TelevisionError Inaccessible(const char* deed, const fs::path& path, const std::error_code& reason) {
  return {Cause::kInaccessible, std::string("cannot ") + deed + " " + path.string() + ": " + reason.message()};
}

TelevisionValue Describe(const std::string& name) {
  auto value = DescribeTelevisionValue(name);
  if (!value) {
    throw TelevisionError(Cause::kUnknownName, "\"" + port::Printable(name) + "\" is no value of a television");
  }
  return *value;
}

// The text as it is stored, or an error that names `origin`.
std::string Check(const TelevisionValue& value, const std::string& text, const std::string& origin) {
  std::string trimmed = port::TrimBlanks(text);
  const bool good = value.isText ? port::IsPrintable(trimmed) && text.size() <= kMaximumValueBytes
                                 : port::ParseNumber(trimmed, value.minimum, value.maximum).has_value();
  if (!good) {
    constexpr std::size_t kShownBytes = 60;
    throw TelevisionError(Cause::kBadValue, origin + ": \"" + port::Printable(trimmed.substr(0, kShownBytes)) +
                                                "\": expected " + ExpectedTelevisionValue(value));
  }
  return trimmed;
}

void MakeFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) {
    throw Inaccessible("make the directory", folder, error);
  }
}

void CreateFile(const fs::path& path, const std::string& text) {
  try {
    port::CreateFileOnce(path, text);
  } catch (const std::system_error& problem) {
    throw Inaccessible("make", path, problem.code());
  }
}

// Makes `folder`, for its owner alone, under another name, has it filled and gives it its name: on a full disk there is
// none. One that somebody else has made meanwhile stays.
void CreateWhole(const fs::path& folder, const std::function<void(const fs::path& folder)>& fill) {
  constexpr mode_t kOwnerOnly = 0700;
  const auto fail = [&](const std::error_code& reason) { throw Inaccessible("make the directory", folder, reason); };
  std::error_code error;
  fs::create_directories(folder.parent_path(), error);
  const fs::path temporary = port::TemporaryName(folder);
  if (error || ::mkdir(temporary.c_str(), kOwnerOnly) != 0) {
    fail(error ? error : std::error_code(errno, std::generic_category()));
  }
  std::error_code ignored;
  try {
    fill(temporary);
    if (::rename(temporary.c_str(), folder.c_str()) != 0 && errno != EEXIST && errno != ENOTEMPTY) {
      fail({errno, std::generic_category()});
    }
  } catch (...) {
    fs::remove_all(temporary, ignored);
    throw;
  }
  fs::remove_all(temporary, ignored);
}

// Where a user without a home has a television.
fs::path LastResort() {
  return "/tmp/orvex-tv-" + std::to_string(::getuid());
}

// No file can be below it.
constexpr const char* kNowhere = "/dev/null";

std::string& TheProblem() {
  static const port::NoDestroy<std::string> problem;
  return *problem;
}

Television CreateOrNowhere(const fs::path& directory) {
  try {
    Television television(directory);
    television.Create();
    return television;
  } catch (const std::exception& problem) {
    TheProblem() = problem.what();
    return Television(kNowhere);
  }
}

}  // namespace

fs::path Television::DirectoryFromEnvironment() {
  if (const auto named = EnvironmentPath("ORVEX_TV")) {
    std::error_code error;
    const fs::path absolute = fs::absolute(*named, error);
    return error ? *named : absolute;
  }
  if (const auto state = EnvironmentPath("XDG_STATE_HOME")) {
    return *state / "orvex-tv";
  }
  if (const auto home = EnvironmentPath("HOME")) {
    return *home / ".local/state/orvex-tv";
  }
  return LastResort();
}

fs::path Television::RoomFile() const {
  return EnvironmentPath("ORVEX_TV_ROOM").value_or(PathOf(kRoomFile));
}

fs::path Television::FaultsFile() const {
  return EnvironmentPath("ORVEX_TV_FAULTS").value_or(PathOf("faults.json"));
}

const Television& Television::Instance() {
  static const port::NoDestroy<const Television> television(CreateOrNowhere(DirectoryFromEnvironment()));
  return *television;
}

const std::string& Television::InstanceProblem() {
  Instance();
  return TheProblem();
}

// What lies in /tmp under the name of the last resort may be another user's.
void Television::CheckOwner() const {
  struct stat state {};
  if (m_Directory != LastResort() || ::lstat(m_Directory.c_str(), &state) != 0) {
    return;
  }
  if (!S_ISDIR(state.st_mode) || state.st_uid != ::geteuid()) {
    throw TelevisionError(Cause::kInaccessible,
                          m_Directory.string() + ": expected a directory of this user; ORVEX_TV names another one");
  }
}

void Television::Create() const {
  CheckOwner();
  std::error_code error;
  if (fs::exists(fs::symlink_status(m_Directory, error))) {
    Complete();
  } else {
    CreateWhole(m_Directory, [](const fs::path& folder) { Television(folder).Complete(); });
  }
}

void Television::Complete() const {
  const auto isQuery = [](const TelevisionValue& value) {
    return fs::path(value.name).begin()->string() == kQueriesFolder;
  };
  for (const TelevisionValue& value : TelevisionValues()) {
    if (!isQuery(value)) {
      CreateMissing(value.name, value.defaultText + "\n");
    }
  }
  CreateMissing(kRoomFile, kDefaultRoom);
  const fs::path queries = PathOf(kQueriesFolder);
  std::error_code error;
  if (fs::exists(fs::symlink_status(queries, error))) {
    return;
  }
  CreateWhole(queries, [&](const fs::path& folder) {
    for (const TelevisionValue& value : TelevisionValues()) {
      if (isQuery(value)) {
        CreateFile(folder / fs::path(value.name).filename(), value.defaultText + "\n");
      }
    }
  });
}

void Television::CreateMissing(const std::string& name, const std::string& text) const {
  const fs::path path = PathOf(name);
  std::error_code error;
  if (fs::exists(fs::symlink_status(path, error))) {
    return;
  }
  MakeFolder(path.parent_path());
  CreateFile(path, text);
}

std::string Television::ReadFile(const std::string& name) const {
  CheckOwner();
  const fs::path path = PathOf(name);
  try {
    return port::ReadSmallFile(path, kMaximumValueBytes);
  } catch (const std::system_error& problem) {
    const int code = problem.code().value();
    if (code == ENOENT || code == ENOTDIR) {
      throw TelevisionError(Cause::kMissing, path.string() + " does not exist");
    }
    throw Inaccessible("read", path, problem.code());
  }
}

std::string Television::Get(const std::string& name) const {
  return Check(Describe(name), ReadFile(name), PathOf(name).string());
}

std::int64_t Television::GetNumber(const std::string& name) const {
  const TelevisionValue value = Describe(name);
  const std::string text = Check(value, ReadFile(name), PathOf(name).string());
  const auto number = value.isText ? std::nullopt : port::ParseNumber(text, value.minimum, value.maximum);
  if (!number) {
    throw TelevisionError(Cause::kBadValue, "\"" + name + "\" is text, expected the name of a number");
  }
  return *number;
}

void Television::Set(const std::string& name, const std::string& text) const {
  const std::string trimmed = Check(Describe(name), text, name);
  CheckOwner();
  const fs::path path = PathOf(name);
  MakeFolder(path.parent_path());
  try {
    port::ReplaceFile(path, trimmed + "\n");
  } catch (const std::system_error& problem) {
    throw Inaccessible("write", path, problem.code());
  }
}

}  // namespace orvex::virtual_tv
