#include "tv/scratch_folder.h"

#include <stdlib.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "options/errors.h"

namespace orvex::tools {

ScratchFolder::ScratchFolder() {
  std::error_code error;
  const std::filesystem::path temporary = std::filesystem::temp_directory_path(error);
  if (error) {
    throw CommandError("TMPDIR: expected a folder for temporary files: " + error.message());
  }
  std::string pattern = (temporary / "orvex_tv_XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    throw CommandError(pattern + ": cannot be made: " + std::strerror(errno));
  }
  m_Path = pattern;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(m_Path, ignored);
}

}  // namespace orvex::tools
