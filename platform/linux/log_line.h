// Records of the system log as lines, and how they come whole into a file.
#pragma once

#include <filesystem>
#include <string>

#include "linux/port.h"

namespace orvex::port {

// What a line of `record` begins with: "main I tag: ".
std::string LogLineBeginning(const LogRecord& record);
// The whole record on one line, line breaks in it as \n: "main I tag: text".
std::string LogLine(const LogRecord& record);

// Appends `line` to a regular file, which is made for its owner alone where it is missing. The file is opened for every
// line: it may be moved away or removed at any time. False: it could not be written.
bool AppendLine(const std::filesystem::path& file, const std::string& line);

}  // namespace orvex::port
