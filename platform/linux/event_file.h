// The event-log collection as a file: one line of JSON per accepted record.
#pragma once

#include <filesystem>
#include <string>

namespace orvex::port {

// Appends one record to `file` whole, or nothing: {"time", "service", "event", "category", "value"}. The file is made
// for its owner alone where it is missing; records of several processes do not mix. Why it failed is reported. Result:
// those of event_log_add_sync().
int AppendEventRecord(const std::filesystem::path& file, const std::string& service, const std::string& event,
                      const std::string& category, const std::string& value);

}  // namespace orvex::port
