// The records that a virtual television's event-log collector has accepted.
#include "tv/event_records.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <memory>

#include <json/reader.h>

namespace orvex::tools {
namespace {

constexpr std::array<const char*, 5> kColumns{"time", "service", "category", "event", "value"};

// Empty when the line is a record; else why it is not.
std::string ParseRecord(const std::string& line, Json::Value& record) {
  const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
  try {
    if (!reader->parse(line.data(), line.data() + line.size(), &record, nullptr)) {
      return "no whole JSON value";
    }
  } catch (const Json::Exception&) {
    return "nested too deeply";
  }
  return record.isObject() ? "" : "no JSON object";
}

std::string Cell(const Json::Value& record, const char* column) {
  const Json::Value& value = record[column];
  std::string text = value.isString() ? value.asString() : "-";
  std::replace_if(
      text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  return text;
}

using Row = std::array<std::string, kColumns.size()>;

std::string Print(const std::vector<Row>& rows) {
  std::array<std::size_t, kColumns.size()> widths{};
  for (const Row& row : rows) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], row[column].size());
    }
  }
  std::string text;
  for (const Row& row : rows) {
    for (std::size_t column = 0; column + 1 < row.size(); ++column) {
      text += row[column] + std::string(widths[column] - row[column].size() + 2, ' ');
    }
    text += row.back() + "\n";
  }
  return text;
}

}  // namespace

EventRecords ReadEventRecords(const std::string& path) {
  EventRecords events;
  std::ifstream in(path, std::ios::binary);
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    Json::Value record;
    const std::string problem = ParseRecord(line, record);
    if (problem.empty()) {
      events.records.push_back(record);
    } else if (!line.empty()) {
      events.problems.push_back(path + ": line " + std::to_string(number) + ": " + problem + ", skipped");
    }
  }
  return events;
}

std::string EventTable(const std::vector<Json::Value>& records) {
  std::vector<Row> rows(1);
  std::copy(kColumns.begin(), kColumns.end(), rows[0].begin());
  for (const Json::Value& record : records) {
    Row row;
    std::transform(kColumns.begin(), kColumns.end(), row.begin(),
                   [&](const char* column) { return Cell(record, column); });
    rows.push_back(row);
  }
  return Print(rows);
}

}  // namespace orvex::tools
