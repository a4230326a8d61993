#include "pc/kept_default.h"

#include <filesystem>
#include <system_error>

#include "linux/small_files.h"
#include "options/errors.h"
#include "pipewire/client/pc_config.h"

namespace orvex::tools {
namespace {

constexpr std::size_t kMaximumNameBytes = 4096;

std::filesystem::path KeptFile() {
  return pipewire::StateFolder() / "default_output";
}

}  // namespace

void KeepDefault(const std::string& node) {
  try {
    port::ReplaceFile(KeptFile(), node + "\n");
  } catch (const std::system_error& problem) {
    throw CommandError(KeptFile().string() + ": cannot be written: " + problem.code().message());
  }
}

std::optional<std::string> KeptDefault() {
  try {
    const std::string text = port::ReadSmallFile(KeptFile(), kMaximumNameBytes);
    return text.substr(0, text.find('\n'));
  } catch (const std::system_error&) {
    return std::nullopt;
  }
}

}  // namespace orvex::tools
