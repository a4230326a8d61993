#include "tv/scratch_folder.h"

#include <stdlib.h>

#include <cerrno>
#include <cstring>
#include <system_error>

#include "options/errors.h"

namespace orvex::tools {

ScratchFolder::ScratchFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "orvex_tv_XXXXXX").string();
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
