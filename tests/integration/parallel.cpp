// A few threads that share out the numbers.
#include "integration/parallel.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace orvex::integration {

void InParallel(std::size_t count, const std::function<void(std::size_t)>& work) {
  // More at a time would make the machine the subject of the test. An emulator starts a program from a copy of itself,
  // in which a lock of another thread stays locked for ever: there, no other thread is.
  constexpr std::size_t kAtATime = ORVEX_IS_EMULATED ? 1 : 4;
  std::atomic<std::size_t> next{0};
  const auto share = [&] {
    for (std::size_t number = next++; number < count; number = next++) {
      work(number);
    }
  };
  std::vector<std::thread> threads;
  for (std::size_t n = 1; n < std::min(kAtATime, count); ++n) {
    threads.emplace_back(share);
  }
  share();
  for (std::thread& thread : threads) {
    thread.join();
  }
}

}  // namespace orvex::integration
