// One instance per class and process, made on first use and never destroyed.
#include "Util/Singleton.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "world/world.h"

namespace {

using orvex::world::World;
using testing::Each;
using testing::ExitedWithCode;

struct Announced {
  Announced() { ORVEX_INFO("constructed"); }
};

// In a process of its own, so that the first use is one however often the test runs.
TEST(Singleton, IsAnnouncedThenMadeThenOnlyFound) {
  const auto useTwice = [] {
    World world;
    const Announced* first = CSingleton<Announced>::GetInstance();
    const Announced* second = CSingleton<Announced>::GetInstance();
    for (const std::string& text : world.journal.Texts()) {
      std::cerr << text << ';';
    }
    std::cerr << "end";
    _exit(first != nullptr && first == second ? 0 : 1);
  };
  EXPECT_EXIT(useTwice(), ExitedWithCode(0), "^I0 \\[singleton\\] new instance;I0 constructed;end$");
}

struct ExitsWhenDestroyed {
  ~ExitsWhenDestroyed() { _exit(9); }
};

TEST(Singleton, IsNeverDestroyed) {
  const auto useAndExit = [] {
    CSingleton<ExitsWhenDestroyed>::GetInstance();
    std::exit(0);
  };
  EXPECT_EXIT(useAndExit(), ExitedWithCode(0), "");
}

// Its constructor waits until every thread has asked for it, and a little longer.
struct Counted {
  static constexpr int kThreads = 16;
  Counted() {
    while (arrived < kThreads) {
      std::this_thread::yield();
    }
    for (int turn = 0; turn < 1000; ++turn) {
      std::this_thread::yield();
    }
    ++constructed;
  }
  static inline std::atomic<int> arrived{0};
  static inline std::atomic<int> constructed{0};
};

TEST(Singleton, IsMadeOnceHoweverManyThreadsComeAtTheSameTime) {
  std::array<Counted*, Counted::kThreads> seen{};
  std::vector<std::thread> threads;
  for (Counted*& instance : seen) {
    threads.emplace_back([&instance] {
      ++Counted::arrived;
      instance = CSingleton<Counted>::GetInstance();
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(Counted::constructed, 1);
  ASSERT_NE(seen[0], nullptr);
  EXPECT_THAT(seen, Each(seen[0]));
}

struct Named {
  explicit Named(std::string given) : name(std::move(given)) {}
  std::string name;
};

TEST(Singleton, IsMadeWithTheArgumentsOfItsFirstUse) {
  World world;
  EXPECT_EQ(CSingleton<Named>::GetInstance("first")->name, "first");
  EXPECT_EQ(CSingleton<Named>::GetInstance("second")->name, "first");
}

struct First {};
struct Second {};

TEST(Singleton, IsOnePerClass) {
  World world;
  EXPECT_NE(static_cast<void*>(CSingleton<First>::GetInstance()),
            static_cast<void*>(CSingleton<Second>::GetInstance()));
}

}  // namespace
