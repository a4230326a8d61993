// Memory that the service asks for and may be refused. The linker leads its calls here (--wrap).
#include <cstddef>
#include <new>

#include "world.h"

using orvex::world::World;

namespace {

bool IsRefused(const char* function) {
  World* world = World::CurrentOrNull();
  return world != nullptr && world->answers.Take(function).has_value();
}

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker fixes these names.
extern "C" {

void* __real_malloc(std::size_t size);
void* __real__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag);
void* __real__ZnajRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag);

void* __wrap_malloc(std::size_t size) {
  return IsRefused("malloc") ? nullptr : __real_malloc(size);
}

// operator new[](size, std::nothrow), named by the width of a size.
#if __SIZEOF_SIZE_T__ == 8
void* __wrap__ZnamRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) {
  return IsRefused("new[]") ? nullptr : __real__ZnamRKSt9nothrow_t(size, tag);
}
#else
void* __wrap__ZnajRKSt9nothrow_t(std::size_t size, const std::nothrow_t& tag) {
  return IsRefused("new[]") ? nullptr : __real__ZnajRKSt9nothrow_t(size, tag);
}
#endif

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
