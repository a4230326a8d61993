// The event-log collector: a file of the port, and nothing else.
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
