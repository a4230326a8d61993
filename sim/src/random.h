// The seeded sources of chance: one stream per use, so that one use does not disturb another.
#pragma once

#include <cstdint>
#include <random>

namespace orvex::sim {

enum class RandomUse : std::uint32_t { kNoise = 1, kTvTail = 2, kOpticalTail = 3, kVoice = 4 };

std::mt19937_64 MakeRandom(std::uint64_t seed, RandomUse use);

}  // namespace orvex::sim
