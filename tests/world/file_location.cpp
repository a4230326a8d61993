// File locations in virtual time: the one file that the service looks for is where the test says.
#include "orvex/platform/file_location.h"

#include "world/world.h"

using orvex::world::World;

std::string file_location(const std::string& fixedPath) {
  World::Current().Call("file_location(\"" + fixedPath + "\")");
  return World::Current().soundFile.empty() ? fixedPath : World::Current().soundFile;
}
