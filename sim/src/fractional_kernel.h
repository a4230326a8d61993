// A delay of a fraction of a sample, as a windowed sinc.
#pragma once

#include <array>

namespace orvex::sim {

// How many samples the kernel reaches to each side. With 24 its response is flat up to 0.89 of half the sampling rate.
constexpr int kKernelHalf = 24;
using FractionalKernel = std::array<float, 2 * kKernelHalf>;

// Weights for an impulse at position `fraction`, 0 to 1, of the samples at positions 1 - kKernelHalf to kKernelHalf.
FractionalKernel MakeFractionalKernel(double fraction);

}  // namespace orvex::sim
