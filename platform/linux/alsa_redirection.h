// Leads libasound to a configuration of the port's.
#pragma once

#include <filesystem>
#include <string>

namespace orvex::port {

// Writes `configuration` to `file` and makes libasound read that file instead of the system's configuration, so that
// "hw:0,8" is what the port says. Must run before libasound is first used and while the process has one thread. A file
// that cannot be written is reported; libasound reads what is there then.
void RedirectAlsa(const std::filesystem::path& file, const std::string& configuration);

// `text` as a string of an ALSA configuration.
std::string AlsaQuoted(const std::string& text);

}  // namespace orvex::port
