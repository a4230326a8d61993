// The virtual television's directory: where it is, how it is made, how values are read and replaced.
#include "television.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "television_files.h"

namespace orvex::host {
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
    throw TelevisionError(Cause::kUnknownName, "\"" + name + "\" is no value of a television");
  }
  return *value;
}

// The text as it is stored, or an error that names `origin`.
std::string Check(const TelevisionValue& value, const std::string& text, const std::string& origin) {
  std::string trimmed = TrimTelevisionText(text);
  const bool good = value.isText ? trimmed.find('\n') == std::string::npos && text.size() <= kMaximumValueBytes
                                 : ParseTelevisionNumber(trimmed, value.minimum, value.maximum).has_value();
  if (!good) {
    constexpr std::size_t kShownBytes = 60;
    throw TelevisionError(Cause::kBadValue, origin + ": \"" + trimmed.substr(0, kShownBytes) + "\": expected " +
                                                ExpectedTelevisionValue(value));
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
  return "/tmp/orvex-tv-" + std::to_string(::getuid());
}

const Television& Television::Instance() {
  // Never destroyed: threads and static objects may use it until the process is gone.
  static const Television& television = *[] {
    auto* const made = new Television(DirectoryFromEnvironment());
    try {
      made->Create();
    } catch (const std::exception& problem) {
      const std::string line = std::string("orvex-host: ") + problem.what() + "\n";
      [[maybe_unused]] const ssize_t count = ::write(STDERR_FILENO, line.data(), line.size());
    }
    return made;
  }();
  return television;
}

void Television::Create() const {
  MakeFolder(m_Directory);
  std::error_code error;
  const bool hasQueries = fs::exists(PathOf(kQueriesFolder), error);
  MakeFolder(PathOf(kQueriesFolder));
  for (const TelevisionValue& value : TelevisionValues()) {
    const bool isQuery = fs::path(value.name).begin()->string() == kQueriesFolder;
    if (!isQuery || !hasQueries) {
      CreateMissing(value.name, value.defaultText + "\n");
    }
  }
  CreateMissing(kRoomFile, kDefaultRoom);
}

void Television::CreateMissing(const std::string& name, const std::string& text) const {
  const fs::path path = PathOf(name);
  std::error_code error;
  if (fs::exists(fs::symlink_status(path, error))) {
    return;
  }
  MakeFolder(path.parent_path());
  try {
    CreateFileOnce(path, text);
  } catch (const std::system_error& problem) {
    throw Inaccessible("make", path, problem.code());
  }
}

std::string Television::ReadFile(const std::string& name) const {
  const fs::path path = PathOf(name);
  try {
    return ReadSmallFile(path, kMaximumValueBytes);
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
  const auto number = value.isText ? std::nullopt : ParseTelevisionNumber(text, value.minimum, value.maximum);
  if (!number) {
    throw TelevisionError(Cause::kBadValue, "\"" + name + "\" is text, expected the name of a number");
  }
  return *number;
}

void Television::Set(const std::string& name, const std::string& text) const {
  const std::string trimmed = Check(Describe(name), text, name);
  const fs::path path = PathOf(name);
  MakeFolder(path.parent_path());
  try {
    ReplaceFile(path, trimmed + "\n");
  } catch (const std::system_error& problem) {
    throw Inaccessible("write", path, problem.code());
  }
}

}  // namespace orvex::host
