// The event-log collector in virtual time.
#include "orvex/platform/event_log.h"

#include "world/world.h"

using orvex::world::World;

class CLogger {};

CLogger* event_log_get_instance() {
  static CLogger logger;
  World& world = World::Current();
  const bool exists = world.hasEventLog && !world.answers.Take("event_log_get_instance").has_value();
  world.Call(std::string("event_log_get_instance() = ") + (exists ? "object" : "null"));
  return exists ? &logger : nullptr;
}

int event_log_add_sync(CLogger* /*logger*/, std::string service, std::string event, std::string category,
                       std::string value) {
  World& world = World::Current();
  const int result = static_cast<int>(world.answers.Take("event_log_add_sync").value_or(kEventLogAccepted));
  world.Call("event_log_add_sync(" + service + ", " + event + ", " + category + ", " + value +
             ") = " + std::to_string(result));
  if (result == kEventLogAccepted) {
    world.events.push_back({std::move(service), std::move(event), std::move(category), std::move(value)});
  }
  return result;
}
