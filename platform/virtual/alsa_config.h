// Leads libasound to the virtual television's sound device.
#pragma once

#include <string>

namespace orvex::virtual_tv {

// Writes alsa.conf into the television's directory and points ALSA_CONFIG_PATH to it, so that "hw:0,8" is the virtual
// device. Must run before libasound is first used and while the process has one thread; later calls do nothing. With
// ORVEX_ALSA=system nothing is done and libasound opens this computer's own devices.
// AppMain() does it; a program that uses the device without a main loop calls it first.
void ConfigureAlsa();

// The configuration as text; `library` is the absolute path of the shared library that holds the device.
std::string AlsaConfiguration(const std::string& library);

}  // namespace orvex::virtual_tv
