// Generates the ALSA configuration of a virtual television.
#include "virtual/alsa_config.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <system_error>

#include "linux/alsa_redirection.h"
#include "virtual/pcm_plugin.h"
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

void WriteConfiguration() {
  const char* const choice = std::getenv("ORVEX_ALSA");
  if (choice != nullptr && std::string_view(choice) == "system") {
    return;
  }
  port::RedirectAlsa(Television::Instance().PathOf("alsa.conf"), AlsaConfiguration(LibraryPath()));
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
         name + " { lib " + port::AlsaQuoted(library) + " }\n" +
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
