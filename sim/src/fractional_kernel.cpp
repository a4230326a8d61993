// A Kaiser window, which keeps the kernel's errors some 80 dB down.
#include "sim/src/fractional_kernel.h"

#include <cmath>
#include <cstddef>

namespace orvex::sim {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kKaiserBeta = 8.0;

// Modified Bessel function of the first kind and order 0, by its power series. std::cyl_bessel_i() can write a global
// variable (signgam), and rooms are computed on several threads.
double BesselI0(double x) {
  double sum = 1.0;
  double term = 1.0;
  for (double k = 1.0; term > 1e-17 * sum; k += 1.0) {
    term *= x * x / (4.0 * k * k);
    sum += term;
  }
  return sum;
}

double KaiserWindow(double x) {  // x: -1 to 1
  return BesselI0(kKaiserBeta * std::sqrt(1.0 - x * x)) / BesselI0(kKaiserBeta);
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
