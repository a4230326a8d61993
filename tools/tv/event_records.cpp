// Reads the collector's file without blocking; a line that is no record is reported and skipped.
#include "tv/event_records.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <sstream>

#include <json/reader.h>

#include "linux/json_text.h"
#include "linux/printable_text.h"
#include "options/errors.h"
#include "run/file_descriptor.h"

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
  return value.isString() ? port::Printable(value.asString()) : "-";
}

// Empty when there is none.
std::string ReadRegularFile(const std::string& path) {
  const auto cannotBeRead = [&] { return CommandError(path + ": cannot be read: " + std::strerror(errno)); };
  // Not blocking: nobody may write into a pipe that stands there.
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
  struct stat state {};
  if (file.Get() < 0 && errno == ENOENT) {
    return "";
  }
  if (file.Get() < 0 || ::fstat(file.Get(), &state) != 0) {
    throw cannotBeRead();
  }
  if (!S_ISREG(state.st_mode)) {
    throw CommandError(path + ": no regular file, expected one with a record on each line");
  }
  std::string content;
  std::array<char, 65536> piece{};
  ssize_t count = 0;
  while ((count = ::read(file.Get(), piece.data(), piece.size())) > 0) {
    content.append(piece.data(), static_cast<std::size_t>(count));
  }
  if (count < 0) {
    throw cannotBeRead();
  }
  return content;
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
  std::istringstream in(ReadRegularFile(path));
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

std::string EventLines(const std::vector<Json::Value>& records) {
  std::string lines;
  for (const Json::Value& record : records) {
    lines += port::CompactJson(record) + "\n";
  }
  return lines;
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
