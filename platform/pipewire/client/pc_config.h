// What a person has chosen for this computer: which outputs are heard, and which microphone listens.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace orvex::pipewire {

// The values are names of PipeWire nodes ("node.name").
struct PcConfig {
  std::string reference;  // output that is heard as it is, such as the television by HDMI
  std::string delayed;    // output that the delay line stands in front of
  std::string microphone;
};

// The file cannot be read or holds something else than expected. The message names file, value and expectation.
class PcConfigError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

// $XDG_CONFIG_HOME/orvex/pc.json, by default ~/.config/orvex/pc.json. Throws PcConfigError without a home.
std::filesystem::path PcConfigFile();

// $XDG_STATE_HOME/orvex, by default ~/.local/state/orvex; made when it is missing. Throws PcConfigError.
std::filesystem::path StateFolder();

// Throws PcConfigError.
PcConfig ReadPcConfig(const std::filesystem::path& file);
// Makes the folder when it is missing. Throws PcConfigError.
void WritePcConfig(const std::filesystem::path& file, const PcConfig& config);

}  // namespace orvex::pipewire
