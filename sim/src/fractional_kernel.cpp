// The windowed sinc of a fractional delay: a Kaiser window that keeps its errors some 80 dB down.
#include "fractional_kernel.h"

#include <cmath>
#include <cstddef>

namespace orvex::sim {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kKaiserBeta = 8.0;

double KaiserWindow(double x) {  // x: -1 to 1
  return std::cyl_bessel_i(0.0, kKaiserBeta * std::sqrt(1.0 - x * x)) / std::cyl_bessel_i(0.0, kKaiserBeta);
}

double Sinc(double x) {
  return std::abs(x) < 1e-12 ? 1.0 : std::sin(kPi * x) / (kPi * x);
}

}  // namespace

FractionalKernel MakeFractionalKernel(double fraction) {
  FractionalKernel kernel{};
  for (std::size_t k = 0; k < kernel.size(); ++k) {
    const double distance = static_cast<double>(k) + 1.0 - kKernelHalf - fraction;
    kernel[k] = static_cast<float>(Sinc(distance) * KaiserWindow(distance / kKernelHalf));
  }
  return kernel;
}

}  // namespace orvex::sim
