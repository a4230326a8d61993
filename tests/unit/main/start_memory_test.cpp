// What happens before main() when memory runs out in the middle of it: whichever allocation fails, there is no
// application object and nothing is left behind.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <new>

#include "Application/OrvexApp.h"
#include "world/world.h"

namespace {

constexpr std::size_t kAlignment = alignof(std::max_align_t);

// Allocations of this program that are not yet given back, and how many more succeed; negative: all.
long g_Held = 0;
long g_LeftToSucceed = -1;

void* Allocate(std::size_t size) {
  if (g_LeftToSucceed == 0) {
    g_LeftToSucceed = -1;  // one failure; who deals with it may need memory
    return nullptr;
  }
  g_LeftToSucceed -= g_LeftToSucceed > 0 ? 1 : 0;
  ++g_Held;
  // Another function than those that the world watches over.
  return std::aligned_alloc(kAlignment, (size + kAlignment) / kAlignment * kAlignment);
}

}  // namespace

void* operator new(std::size_t size) {
  void* block = Allocate(size);
  return block != nullptr ? block : throw std::bad_alloc();
}
// The library's own would do, but not a sanitizer's, which are pairs of their own.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return Allocate(size);
}
void operator delete(void* block) noexcept {
  g_Held -= block != nullptr ? 1 : 0;
  std::free(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
  operator delete(block);
}
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
  operator delete(block);
}

namespace {

using orvex::world::World;

// The application object of a program start whose allocation after `succeeding` ones fails, if there is one.
std::unique_ptr<COrvexApp> StartWith(long succeeding) {
  g_LeftToSucceed = succeeding;
  std::unique_ptr<COrvexApp> app(COrvexApp::CreateAtProgramStart());
  g_LeftToSucceed = -1;
  return app;
}

TEST(StartMemory, AnyAllocationThatFailsLeavesNoApplicationAndNothingElse) {
  g_pOrvexApp = nullptr;
  long failing = 0;
  for (bool hasStarted = false; !hasStarted; ++failing) {
    const long before = g_Held;
    {
      World world;
      const std::unique_ptr<COrvexApp> app = StartWith(failing);
      hasStarted = app != nullptr;
      EXPECT_EQ(g_pOrvexApp, app.get()) << "allocation " << failing;
      EXPECT_EQ(world.subscriptions.size(), hasStarted ? 1U : 0U) << "allocation " << failing;
      g_pOrvexApp = nullptr;
    }
    EXPECT_EQ(g_Held, before) << "allocation " << failing;
  }
  EXPECT_GT(failing, 20) << "strings, formats and the subscription need memory";
}

}  // namespace
