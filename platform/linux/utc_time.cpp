// UTC with microseconds.
#include "linux/utc_time.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace orvex::port {

std::string UtcNow() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm utc{};
  gmtime_r(&now.tv_sec, &utc);
  std::array<char, 32> seconds{};
  std::strftime(seconds.data(), seconds.size(), "%Y-%m-%dT%H:%M:%S", &utc);
  std::array<char, 16> fraction{};
  const int microseconds = static_cast<int>(now.tv_nsec / 1000);
  std::snprintf(fraction.data(), fraction.size(), ".%06dZ", microseconds);
  return std::string(seconds.data()) + fraction.data();
}

}  // namespace orvex::port
