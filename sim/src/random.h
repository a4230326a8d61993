// Seeded random generators: one for each use, so that what one use draws does not change the numbers of another.
#pragma once

#include <cstdint>
#include <random>

namespace orvex::sim {

enum class RandomUse : std::uint32_t { kNoise = 1, kTvTail = 2, kOpticalTail = 3, kVoice = 4 };

std::mt19937_64 MakeRandom(std::uint64_t seed, RandomUse use);

}  // namespace orvex::sim
