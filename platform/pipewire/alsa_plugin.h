// The ALSA configuration of this port.
#pragma once

#include <string>

namespace orvex::pipewire {

// Plays what is written to "hw:0,8" to orvex-delay's sink for the test sound, through PipeWire's plug-in for libasound.
std::string AlsaConfiguration();

}  // namespace orvex::pipewire
