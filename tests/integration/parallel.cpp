// A few threads that share out the numbers.
#include "integration/parallel.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace orvex::integration {

void InParallel(std::size_t count, const std::function<void(std::size_t)>& work) {
  // More at a time would make the machine the subject of the test.
  constexpr std::size_t kAtATime = 4;
  std::atomic<std::size_t> next{0};
  std::vector<std::thread> threads;
  for (std::size_t n = 0; n < std::min(kAtATime, count); ++n) {
    threads.emplace_back([&] {
      for (std::size_t number = next++; number < count; number = next++) {
        work(number);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

}  // namespace orvex::integration
