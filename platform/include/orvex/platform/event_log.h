// Contract: the event-log collector, which takes telemetry records. Main loop only.
//
// The caller asks for the user's consent; a port does not.
#pragma once

#include <string>

// The collector. Opaque; the port owns it, it lives until the process ends.
class CLogger;

// The collector's instance, or null when there is none (now; a later call MAY succeed).
CLogger* event_log_get_instance();

// Result of a record that was accepted; every other result means that it was not.
constexpr int kEventLogAccepted = 1;

// Hands over one record and waits until it is accepted whole or refused. Texts are UTF-8, passed by value.
// 1: accepted. 0: refused. Negative: the collector cannot be reached. After any result but 1 nothing was kept.
int event_log_add_sync(CLogger* logger, std::string service, std::string event, std::string category,
                       std::string value);
