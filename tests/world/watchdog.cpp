// The watchdog in virtual time.
#include "orvex/platform/watchdog.h"

#include "world/world.h"

using orvex::world::World;

int watchdog_register(std::int32_t timeout) {
  World& world = World::Current();
  world.isWatched = false;
  return world.Answer("watchdog_register", std::to_string(timeout), kWatchdogDone, [&] { world.isWatched = true; });
}

int watchdog_notify() {
  World& world = World::Current();
  return world.Answer("watchdog_notify", "", world.isWatched ? kWatchdogDone : kWatchdogFailed);
}
