// Checks where a result goes, and puts it there in one step.
#include "output/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <optional>
#include <system_error>
#include <utility>

namespace orvex::tools {
namespace {

namespace fs = std::filesystem;

constexpr char kStandardStream[] = "-";

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
  throw OutputError(path + ": " + reason);
}

[[noreturn]] void FailToWrite(const std::string& path, const std::string& cause) {
  Fail(path, "cannot be written: " + cause);
}

// Where the content is collected, beside the file whose place it takes. Gone with its object when it does not.
class UnfinishedFile {
public:
  // `path`: how messages name the file.
  UnfinishedFile(std::string path, const fs::path& target)
      : m_Path(std::move(path)), m_Target(target), m_Name((target.parent_path() / ".orvex-XXXXXX").string()) {
    const int descriptor = ::mkostemp(m_Name.data(), O_CLOEXEC);
    if (descriptor < 0) {
      FailToWrite(m_Path, std::strerror(errno));
    }
    ::close(descriptor);
  }
  ~UnfinishedFile() { ::unlink(m_Name.c_str()); }
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;

  void Fill(const std::function<void(std::ostream&)>& write) const {
    std::ofstream out(m_Name, std::ios::binary);
    write(out);
    out.close();
    if (!out) {
      FailToWrite(m_Path, std::strerror(errno));
    }
  }

  void TakePlace(mode_t permissions) const {
    if (::chmod(m_Name.c_str(), permissions) != 0 || std::rename(m_Name.c_str(), m_Target.c_str()) != 0) {
      FailToWrite(m_Path, std::strerror(errno));
    }
  }

private:
  const std::string m_Path;
  const fs::path m_Target;
  std::string m_Name;
};

using State = std::optional<struct stat>;

// Of what is there, by whatever links.
State StateOf(const std::string& path) {
  struct stat state {};
  return ::stat(path.c_str(), &state) == 0 ? State(state) : std::nullopt;
}

State StateOf(int descriptor) {
  struct stat state {};
  return ::fstat(descriptor, &state) == 0 ? State(state) : std::nullopt;
}

bool IsSame(const State& one, const State& other) {
  return one && other && one->st_dev == other->st_dev && one->st_ino == other->st_ino;
}

// The path without links, also of a name that is still new.
fs::path Resolve(const fs::path& path, std::error_code& error) {
  fs::path target = fs::canonical(path, error);
  if (error) {
    target = fs::canonical(path.has_parent_path() ? path.parent_path() : ".", error) / path.filename();
  }
  return target;
}

mode_t PermissionsOfNewFiles() {
  constexpr mode_t kAll = 0666;
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return kAll & ~mask;
}

}  // namespace

OutputFile::OutputFile(std::string path, const std::vector<std::string>& others) : m_Path(std::move(path)) {
  if (m_Path == kStandardStream) {
    return;
  }
  if (m_Path.empty()) {
    throw OutputError("\"\": expected the name of a file");
  }
  std::error_code error;
  m_Target = Resolve(m_Path, error);
  if (error) {
    FailToWrite(m_Path, error.message());
  }
  CheckWhatIsThere();
  CheckOthers(others);
  const UnfinishedFile attempt(m_Path, m_Target);
}

void OutputFile::CheckWhatIsThere() {
  const State state = StateOf(m_Path);
  std::error_code ignored;
  if (state ? !S_ISREG(state->st_mode) : fs::is_symlink(m_Path, ignored)) {
    Fail(m_Path, "no regular file, expected one or a new name");
  }
  if (state && ::access(m_Path.c_str(), W_OK) != 0) {
    FailToWrite(m_Path, std::strerror(errno));
  }
  constexpr mode_t kPermissions = 07777;
  m_Permissions = state ? state->st_mode & kPermissions : PermissionsOfNewFiles();
}

void OutputFile::CheckOthers(const std::vector<std::string>& others) const {
  const State state = StateOf(m_Path);
  if (IsSame(state, StateOf(STDOUT_FILENO))) {
    Fail(m_Path, "standard output goes there, expected another file");
  }
  for (const std::string& other : others) {
    std::error_code error;
    const bool isSame = other == kStandardStream ? IsSame(state, StateOf(STDIN_FILENO))
                                                 : IsSame(state, StateOf(other)) || Resolve(other, error) == m_Target;
    if (isSame) {
      Fail(m_Path, "the same file as " + other + ", expected another one");
    }
  }
}

void OutputFile::Write(const std::function<void(std::ostream&)>& write) const {
  if (IsStandardOutput()) {
    write(std::cout);
    return;
  }
  const UnfinishedFile unfinished(m_Path, m_Target);
  unfinished.Fill(write);
  unfinished.TakePlace(m_Permissions);
}

}  // namespace orvex::tools
