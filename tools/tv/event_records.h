// The records that a virtual television's event-log collector has accepted.
#pragma once

#include <string>
#include <vector>

#include <json/value.h>

namespace orvex::tools {

struct EventRecords {
  std::vector<Json::Value> records;   // in order; objects
  std::vector<std::string> problems;  // lines that were skipped: file, line number, why
};

// A missing file has no records. Throws CommandError when `path` is no regular file or cannot be read.
EventRecords ReadEventRecords(const std::string& path);

// Each record on a line of its own.
std::string EventLines(const std::vector<Json::Value>& records);

// The records as a table with a heading line; every cell is one line of printable text.
std::string EventTable(const std::vector<Json::Value>& records);

}  // namespace orvex::tools
