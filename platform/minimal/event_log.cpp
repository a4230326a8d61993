// No event-log collector.
#include "orvex/platform/event_log.h"

CLogger* event_log_get_instance() {
  return nullptr;
}

int event_log_add_sync(CLogger* /*logger*/, std::string /*service*/, std::string /*event*/, std::string /*category*/,
                       std::string /*value*/) {
  return kEventLogUnreachable;
}
