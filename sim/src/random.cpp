// std::seed_seq mixes seed and use, so that neighbouring seeds give unrelated numbers.
#include "sim/src/random.h"

namespace orvex::sim {

std::mt19937_64 MakeRandom(std::uint64_t seed, RandomUse use) {
  std::seed_seq sequence{static_cast<std::uint32_t>(seed), static_cast<std::uint32_t>(seed >> 32U),
                         static_cast<std::uint32_t>(use)};
  return std::mt19937_64(sequence);
}

}  // namespace orvex::sim
