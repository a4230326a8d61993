// Contract: the event-log collector, which takes telemetry records. Main loop only.
//
// The caller asks for the user's consent before it hands over a record; a port does not. A port keeps what it has
// accepted, whole and in the order of the calls.
#pragma once

#include <string>

// The collector. Opaque; the port owns it, it lives until the process ends.
class CLogger;

// The collector's instance, or null when there is none now. The service asks again before the next record; once it has
// an instance, it keeps it.
CLogger* event_log_get_instance();

// Results of a record. After any but kEventLogAccepted nothing was kept, and the service does not hand the record over
// again.

// The collector holds the whole record.
constexpr int kEventLogAccepted = 1;
// The collector was reached and does not take the record.
constexpr int kEventLogRefused = 0;
// The collector cannot be reached. A port MAY give another negative number, which the log then shows.
constexpr int kEventLogUnreachable = -1;

// Hands over one record and waits until it is accepted whole or refused: when the call returns kEventLogAccepted, the
// record survives the end of the process. Texts are UTF-8, passed by value; `value` is a list of fields,
// "{name=value;name=value}".
// Results: kEventLogAccepted, kEventLogRefused, kEventLogUnreachable.
int event_log_add_sync(CLogger* logger, std::string service, std::string event, std::string category,
                       std::string value);
