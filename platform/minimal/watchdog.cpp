// No watchdog.
#include "orvex/platform/watchdog.h"

namespace {

constexpr int kFailed = -1;

}  // namespace

int watchdog_register(std::int32_t /*timeout*/) {
  return kFailed;
}

int watchdog_notify() {
  return kFailed;
}
