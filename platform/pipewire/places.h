// Where this port keeps its files.
#pragma once

#include <filesystem>

namespace orvex::pipewire {

// Each one always the same, and made when it is missing; why it cannot be made is reported. Any thread, before main()
// too.

// What is kept; orvex-delay keeps its delay here, too.
const std::filesystem::path& StatePlace();
const std::filesystem::path& SettingsPlace();
// What lives as long as a run: $XDG_RUNTIME_DIR/orvex, and where the session has no such folder, run/ in StatePlace().
const std::filesystem::path& RunPlace();

}  // namespace orvex::pipewire
