// Memory that the service requests: a request may be refused, and what is not freed is known. The linker leads its
// calls here (--wrap).
#include <cstddef>
#include <new>

#include "world/world.h"

using orvex::world::World;

namespace {

bool IsRefused(const char* function) {
  World* world = World::CurrentOrNull();
  return world != nullptr && world->answers.Take(function).has_value();
}

void* NoteRequested(void* block) {
  World* world = World::CurrentOrNull();
  if (world != nullptr && block != nullptr) {
    world->openBlocks.insert(block);
  }
  return block;
}

void* NoteFreed(void* block) {
  World* world = World::CurrentOrNull();
  if (world != nullptr) {
    world->openBlocks.erase(block);
  }
  return block;
}

}  // namespace

// operator new(size, std::nothrow), named by the width of a size.
#if __SIZEOF_SIZE_T__ == 8
#define ORVEX_REAL_NEW __real__ZnwmRKSt9nothrow_t
#define ORVEX_WRAP_NEW __wrap__ZnwmRKSt9nothrow_t
#else
#define ORVEX_REAL_NEW __real__ZnwjRKSt9nothrow_t
#define ORVEX_WRAP_NEW __wrap__ZnwjRKSt9nothrow_t
#endif

// NOLINTBEGIN(bugprone-reserved-identifier): the linker fixes these names.
extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void __real_free(void* block);
void* ORVEX_REAL_NEW(std::size_t size, const std::nothrow_t& tag);

void* __wrap_malloc(std::size_t size) {
  return IsRefused("malloc") ? nullptr : NoteRequested(__real_malloc(size));
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return IsRefused("calloc") ? nullptr : NoteRequested(__real_calloc(count, size));
}

void __wrap_free(void* block) {
  __real_free(NoteFreed(block));
}

void* ORVEX_WRAP_NEW(std::size_t size, const std::nothrow_t& tag) {
  try {
    return IsRefused("new") ? nullptr : ORVEX_REAL_NEW(size, tag);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
