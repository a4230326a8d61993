// What the service's exit code tells on this computer.
#pragma once

#include "linux/exit_codes.h"

namespace orvex::pipewire {

using port::kExitInOrder;
using port::kExitNoMainLoop;
constexpr int kExitUsage = 2;
constexpr int kExitInUse = 3;

}  // namespace orvex::pipewire
