// The contract's event-log collector, for a port that takes event_file.h as it is.
#include "orvex/platform/event_log.h"

#include "linux/event_file.h"
#include "linux/port.h"

class CLogger {};

CLogger* event_log_get_instance() {
  static CLogger logger;
  return &logger;
}

int event_log_add_sync(CLogger* logger, std::string service, std::string event, std::string category,
                       std::string value) {
  return logger == nullptr
             ? kEventLogUnreachable
             : orvex::port::AppendEventRecord(orvex::port::EventLogFile(), service, event, category, value);
}
