// Files that the service opens by descriptor, and whether it closes them. The linker leads its calls here (--wrap).
#include <cerrno>
#include <cstdio>

#include "world/world.h"

using orvex::world::World;

// NOLINTBEGIN(bugprone-reserved-identifier): the linker fixes these names.
extern "C" {

std::FILE* __real_fdopen(int descriptor, const char* mode);
int __real_fclose(std::FILE* file);

std::FILE* __wrap_fdopen(int descriptor, const char* mode) {
  World* world = World::CurrentOrNull();
  if (world == nullptr) {
    return __real_fdopen(descriptor, mode);
  }
  if (world->answers.Take("fdopen").has_value()) {
    errno = ENOMEM;
    return nullptr;
  }
  std::FILE* file = __real_fdopen(descriptor, mode);
  if (file != nullptr) {
    world->openFiles.insert(file);
  }
  return file;
}

int __wrap_fclose(std::FILE* file) {
  World* world = World::CurrentOrNull();
  if (world != nullptr) {
    world->openFiles.erase(file);
  }
  return __real_fclose(file);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
