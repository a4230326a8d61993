// The watchdog in virtual time.
#include "orvex/platform/watchdog.h"

#include "world/world.h"

using orvex::world::World;

int watchdog_register(std::int32_t timeout) {
  const int result = static_cast<int>(World::Current().answers.Take("watchdog_register").value_or(0));
  World::Current().isWatched = result == 0;
  World::Current().Call("watchdog_register(" + std::to_string(timeout) + ") = " + std::to_string(result));
  return result;
}

int watchdog_notify() {
  const int result =
      static_cast<int>(World::Current().answers.Take("watchdog_notify").value_or(World::Current().isWatched ? 0 : -1));
  World::Current().Call("watchdog_notify() = " + std::to_string(result));
  return result;
}
