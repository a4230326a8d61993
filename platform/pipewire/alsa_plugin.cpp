// Where the plug-in is, and what it is told.
#include "pipewire/alsa_plugin.h"

#include <cstdlib>

#include "linux/alsa_redirection.h"
#include "pipewire/client/delay_node.h"

namespace orvex::pipewire {
namespace {

std::string PluginFile() {
  const char* const file = std::getenv("ORVEX_PIPEWIRE_PLUGIN");
  return file != nullptr && *file != '\0' ? file : ORVEX_PIPEWIRE_PLUGIN;
}

}  // namespace

std::string AlsaConfiguration() {
  return "# Made at every start of the service.\n"
         "pcm_type.pipewire { lib " +
         port::AlsaQuoted(PluginFile()) +
         " }\n"
         "pcm.hw {\n"
         "  @args [ CARD DEV SUBDEV ]\n"
         "  @args.CARD { type string default \"0\" }\n"
         "  @args.DEV { type integer default 0 }\n"
         "  @args.SUBDEV { type integer default -1 }\n"
         "  type pipewire\n"
         "  playback_node " +
         port::AlsaQuoted(kTestSink) +
         "\n"
         "}\n";
}

}  // namespace orvex::pipewire
