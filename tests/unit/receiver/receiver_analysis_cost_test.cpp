// Blocks come on a thread that must not wait: analysing one allocates nothing and takes no lock.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <vector>

#include "Application/OrvexReceiver.h"
#include "receiver/null_dump.h"

namespace {

struct Counts {
  int allocations = 0;
  int locks = 0;
};
Counts counts;

}  // namespace

// In place of the C library's for the whole program, operator new and the shared libraries included.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

void* malloc(std::size_t size) noexcept {
  ++counts.allocations;
  return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) noexcept {
  ++counts.allocations;
  return __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) noexcept {
  ++counts.allocations;
  return __libc_realloc(memory, size);
}
int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
  using Lock = int (*)(pthread_mutex_t*);
  static const Lock next = reinterpret_cast<Lock>(dlsym(RTLD_NEXT, "pthread_mutex_lock"));
  ++counts.locks;
  return next(mutex);
}
}

namespace {

using Block = std::array<std::uint8_t, 2 * kVoiceBlockSamples>;

template <typename Work>
Counts CountDuring(const Work& work) {
  const Counts before = counts;
  work();
  return {counts.allocations - before.allocations, counts.locks - before.locks};
}

// A tone of 17 kHz with its amplitude, over something that the ambient means can be made of.
Block ToneBlock(double amplitude) {
  constexpr double kStep = 2.0 * M_PI * 17000.0 / kVoiceRateHz;
  Block bytes{};
  for (std::size_t n = 0; n < kVoiceBlockSamples; ++n) {
    const double sample = amplitude * std::sin(kStep * static_cast<double>(n)) + static_cast<double>(n % 7);
    const auto bits = static_cast<std::uint16_t>(static_cast<std::int16_t>(std::lround(sample)));
    bytes[2 * n] = static_cast<std::uint8_t>(bits & 0xFFU);
    bytes[2 * n + 1] = static_cast<std::uint8_t>(bits >> 8U);
  }
  return bytes;
}

TEST(ReceiverAnalysisCost, TheCountersSeeAnAllocationAndALock) {
  const Counts seen = CountDuring([] {
    std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    const std::vector<int> memory(1000);
    std::free(std::malloc(memory.size()));
  });
  EXPECT_EQ(seen.allocations, 2);
  EXPECT_EQ(seen.locks, 1);
}

TEST(ReceiverAnalysisCost, ABlockAllocatesNothingAndTakesNoLock) {
  constexpr int kQuietBlocks = 40;
  const Block quiet = ToneBlock(0.0);
  const Block tone = ToneBlock(20000.0);
  orvex::tools::DumpNothing();
  OrvexReceiver receiver{OrvexReceiverCallbacks{}};
  receiver.StartBTRecoder();
  const auto deliver = [&](const Block& block) {
    const VoiceData record{static_cast<std::uint16_t>(block.size()), block.data()};
    OrvexReceiver::m_ReceiveBTAudioDataCB(&record, &receiver);
  };

  const Counts seen = CountDuring([&] {
    for (int block = 0; block < kQuietBlocks; ++block) {
      deliver(quiet);
    }
    deliver(tone);
  });

  ASSERT_EQ(receiver.GetDirection(), 1) << "the tone was not found, so not everything was run";
  EXPECT_EQ(seen.allocations, 0);
  EXPECT_EQ(seen.locks, 0);
}

}  // namespace
