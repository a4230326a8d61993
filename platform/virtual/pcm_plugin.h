// The sound device's entry for libasound. The generated ALSA configuration (alsa_config.h) leads to it.
#pragma once

namespace orvex::virtual_tv {

// The plug-in's name in an ALSA configuration; the library exports its entry as `_snd_pcm_orvex_open`.
constexpr const char* kPcmPluginName = "orvex";

}  // namespace orvex::virtual_tv
