// What the service's exit code tells on this computer.
#pragma once

namespace orvex::virtual_tv {

constexpr int kExitInOrder = 0;  // whatever the run has found
constexpr int kExitNoMainLoop = 1;
constexpr int kExitUsage = 2;
constexpr int kExitTelevisionInUse = 3;
constexpr int kExitNoTelevision = 4;

}  // namespace orvex::virtual_tv
