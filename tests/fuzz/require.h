// Assertions of the fuzz targets. One that does not hold ends the process, and libFuzzer keeps the input.
#pragma once

#include <cstdlib>
#include <iostream>
#include <string>

namespace orvex::fuzz {

[[noreturn]] inline void Fail(const std::string& what) {
  std::cerr << "broken: " << what << std::endl;
  std::abort();
}

inline void Require(bool holds, const char* what) {
  if (!holds) {
    Fail(what);
  }
}

}  // namespace orvex::fuzz
