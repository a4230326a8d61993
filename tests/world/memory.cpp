// Memory that the service asks for and may be refused, and whether it gives it back. The linker leads its calls here
// (--wrap).
#include <cstddef>
#include <new>

#include "world.h"

using orvex::world::World;

namespace {

bool IsRefused(const char* function) {
  World* world = World::CurrentOrNull();
  return world != nullptr && world->answers.Take(function).has_value();
}

void* Lent(void* block) {
  World* world = World::CurrentOrNull();
  if (world != nullptr && block != nullptr) {
    world->openBlocks.insert(block);
  }
  return block;
}

void* GivenBack(void* block) {
  World* world = World::CurrentOrNull();
  if (world != nullptr) {
    world->openBlocks.erase(block);
  }
  return block;
}

}  // namespace

// operator new(size, std::nothrow) and its array form, named by the width of a size.
#if __SIZEOF_SIZE_T__ == 8
#define ORVEX_REAL_NEW __real__ZnwmRKSt9nothrow_t
#define ORVEX_WRAP_NEW __wrap__ZnwmRKSt9nothrow_t
#define ORVEX_REAL_NEW_ARRAY __real__ZnamRKSt9nothrow_t
#define ORVEX_WRAP_NEW_ARRAY __wrap__ZnamRKSt9nothrow_t
#else
#define ORVEX_REAL_NEW __real__ZnwjRKSt9nothrow_t
#define ORVEX_WRAP_NEW __wrap__ZnwjRKSt9nothrow_t
#define ORVEX_REAL_NEW_ARRAY __real__ZnajRKSt9nothrow_t
#define ORVEX_WRAP_NEW_ARRAY __wrap__ZnajRKSt9nothrow_t
#endif

// NOLINTBEGIN(bugprone-reserved-identifier): the linker fixes these names.
extern "C" {

void* __real_malloc(std::size_t size);
void __real_free(void* block);
void* ORVEX_REAL_NEW(std::size_t size, const std::nothrow_t& tag);
void* ORVEX_REAL_NEW_ARRAY(std::size_t size, const std::nothrow_t& tag);
void __real__ZdaPv(void* block);  // operator delete[]

void* __wrap_malloc(std::size_t size) {
  return IsRefused("malloc") ? nullptr : Lent(__real_malloc(size));
}

void __wrap_free(void* block) {
  __real_free(GivenBack(block));
}

void* ORVEX_WRAP_NEW(std::size_t size, const std::nothrow_t& tag) {
  return IsRefused("new") ? nullptr : ORVEX_REAL_NEW(size, tag);
}

void* ORVEX_WRAP_NEW_ARRAY(std::size_t size, const std::nothrow_t& tag) {
  return IsRefused("new[]") ? nullptr : Lent(ORVEX_REAL_NEW_ARRAY(size, tag));
}

void __wrap__ZdaPv(void* block) {
  __real__ZdaPv(GivenBack(block));
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
