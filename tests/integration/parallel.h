// Several things at a time: a run is mostly waiting.
#pragma once

#include <cstddef>
#include <functional>

namespace orvex::integration {

// Calls `work` once for each number below `count`, from some threads at a time; returns when all have returned.
void InParallel(std::size_t count, const std::function<void(std::size_t)>& work);

}  // namespace orvex::integration
