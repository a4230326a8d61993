// A file that a tool writes as its result, where a person names it.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "options/errors.h"

namespace orvex::tools {

// A file that is not written. The text names it and the cause.
class OutputError : public UsageError {
public:
  using UsageError::UsageError;
};

// To be made before the work begins, so that a file that cannot be written is told at once. What is there stays as it
// is until there is something to put in its place.
class OutputFile {
public:
  // `path`: "-" is standard output. `others`: the tool's inputs, "-" being standard input, and its outputs so far.
  //
  // Throws OutputError when the path leads to anything but a regular file or a new name, by whatever links; when that
  // file or its folder cannot be written; when it is one of `others` or what standard output goes to.
  explicit OutputFile(std::string path, const std::vector<std::string>& others = {});

  bool IsStandardOutput() const { return m_Target.empty(); }

  // `write` puts the content into the stream. Nobody sees half a file: the content takes the old one's place when it is
  // complete. The permissions stay, and so does a symbolic link that leads to the file.
  //
  // Throws OutputError, or what `write` throws; the file is then as it was. Whether standard output takes the content
  // is for RunWithStandardOutput() to say.
  void Write(const std::function<void(std::ostream&)>& write) const;

private:
  void CheckWhatIsThere();
  void CheckOthers(const std::vector<std::string>& others) const;

  std::string m_Path;              // as it was given
  std::filesystem::path m_Target;  // without links; empty: standard output
  mode_t m_Permissions = 0;
};

}  // namespace orvex::tools
