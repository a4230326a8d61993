// Contract: the event-log collector, which takes telemetry records. Main loop only.
//
// The caller asks for the user's consent; a port does not.
#pragma once

#include <string>

// The collector. Opaque; the port owns it, it lives until the process ends.
class CLogger;

// The collector's instance, or null when there is none (now; a later call MAY succeed).
CLogger* event_log_get_instance();

// Results of a record. After any but kEventLogAccepted nothing was kept.
constexpr int kEventLogAccepted = 1;      // accepted whole
constexpr int kEventLogRefused = 0;       // refused
constexpr int kEventLogUnreachable = -1;  // the collector cannot be reached; a port MAY give another negative number

// Hands over one record and waits until it is accepted whole or refused. Texts are UTF-8, passed by value.
int event_log_add_sync(CLogger* logger, std::string service, std::string event, std::string category,
                       std::string value);
