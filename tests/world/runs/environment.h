// Numbers that a person who runs the tests gives.
#pragma once

#include <cstdint>
#include <cstdlib>

namespace orvex::runs {

inline std::uint64_t FromEnvironment(const char* name, std::uint64_t otherwise) {
  const char* const value = std::getenv(name);
  return value == nullptr ? otherwise : std::strtoull(value, nullptr, 10);
}

}  // namespace orvex::runs
