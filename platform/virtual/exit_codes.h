// What the service's exit code tells on this computer.
#pragma once

#include "linux/exit_codes.h"

namespace orvex::virtual_tv {

using port::kExitInOrder;
using port::kExitNoMainLoop;
using port::kExitUsage;
constexpr int kExitTelevisionInUse = 3;
constexpr int kExitNoTelevision = 4;

}  // namespace orvex::virtual_tv
