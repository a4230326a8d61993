// Generates the ALSA configuration of a virtual television.
#include "virtual/alsa_config.h"

#include <dlfcn.h>
#include <fcntl.h>

#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <system_error>

#include "linux/small_files.h"
#include "virtual/pcm_plugin.h"
#include "virtual/report.h"
#include "virtual/television.h"

namespace orvex::virtual_tv {
namespace {

// The file that this code was loaded from.
std::string LibraryPath() {
  Dl_info info{};
  if (::dladdr(reinterpret_cast<const void*>(&ConfigureAlsa), &info) == 0 || info.dli_fname == nullptr) {
    return "";
  }
  std::error_code error;
  const auto absolute = std::filesystem::canonical(info.dli_fname, error);
  return error ? info.dli_fname : absolute.string();
}

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') {
      quoted += '\\';
    }
    quoted += character;
  }
  return quoted + '"';
}

// libasound takes ALSA_CONFIG_PATH as a list that blanks and colons part. A path that has them is reached through a
// descriptor that stays open.
std::string ListEntry(const std::string& path) {
  if (path.find_first_of(" :") == std::string::npos) {
    return path;
  }
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  return "/proc/self/fd/" + std::to_string(descriptor);
}

void WriteConfiguration() {
  const char* const choice = std::getenv("ORVEX_ALSA");
  if (choice != nullptr && std::string_view(choice) == "system") {
    return;
  }
  const std::string path = Television::Instance().PathOf("alsa.conf").string();
  try {
    port::ReplaceFile(path, AlsaConfiguration(LibraryPath()));
  } catch (const std::system_error& problem) {
    ReportProblem("cannot write " + path + ": " + problem.code().message() + "; there is no sound device");
  }
  // Also when it could not be written: a virtual television does not play on this computer's own devices.
  ::setenv("ALSA_CONFIG_PATH", ListEntry(path).c_str(), 1);
}

}  // namespace

void ConfigureAlsa() {
  static std::once_flag once;
  std::call_once(once, WriteConfiguration);
}

std::string AlsaConfiguration(const std::string& library) {
  const std::string name = kPcmPluginName;
  return "# Made at every start of a program on this virtual television.\n"
         "pcm_type." +
         name + " { lib " + Quoted(library) + " }\n" +
         "pcm.hw {\n"
         "  @args [ CARD DEV SUBDEV ]\n"
         "  @args.CARD { type string default \"0\" }\n"
         "  @args.DEV { type integer default 0 }\n"
         "  @args.SUBDEV { type integer default -1 }\n"
         "  type " +
         name +
         "\n"
         "  card $CARD\n"
         "  device $DEV\n"
         "  subdevice $SUBDEV\n"
         "}\n";
}

}  // namespace orvex::virtual_tv
