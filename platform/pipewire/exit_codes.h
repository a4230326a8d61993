// What the service's exit code tells on this computer.
#pragma once

#include "linux/exit_codes.h"

namespace orvex::pipewire {

using port::kExitInOrder;
using port::kExitNoMainLoop;
using port::kExitUsage;
constexpr int kExitInUse = 3;

}  // namespace orvex::pipewire
