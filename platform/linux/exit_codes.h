// What a run's exit code tells on every port; a port may have further ones.
#pragma once

namespace orvex::port {

constexpr int kExitInOrder = 0;  // whatever the run has found
constexpr int kExitNoMainLoop = 1;
constexpr int kExitUsage = 2;  // wrong arguments; a program that takes none leaves them alone

}  // namespace orvex::port
