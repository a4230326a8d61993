// Reads and replaces the file with the delay.
#include "delay/delay_file.h"

#include <fmt/format.h>

#include <charconv>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "linux/number_text.h"
#include "linux/small_files.h"
#include "pipewire/client/delay_node.h"

namespace orvex::tools {

double ParseDelayMs(const std::string& text) {
  const std::string number = port::TrimBlanks(text);
  double delayMs = -1.0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), delayMs);
  const bool isNumber = error == std::errc() && end == number.data() + number.size();
  if (!isNumber || !(delayMs >= 0.0 && delayMs <= pipewire::kMaximumDelayMs)) {
    throw std::invalid_argument(
        fmt::format("\"{}\", expected milliseconds from 0 to {}", number, pipewire::kMaximumDelayMs));
  }
  return delayMs;
}

DelayFile::DelayFile(std::filesystem::path file, std::function<void(const std::string&)> report)
    : m_File(std::move(file)), m_Report(std::move(report)) {}

double DelayFile::Read() const {
  constexpr std::size_t kMaximumBytes = 64;
  try {
    return ParseDelayMs(port::ReadSmallFile(m_File, kMaximumBytes));
  } catch (const std::invalid_argument& problem) {
    m_Report(m_File.string() + ": " + problem.what() + "; beginning with 0");
  } catch (const std::system_error& error) {
    if (error.code() != std::errc::no_such_file_or_directory) {
      m_Report(m_File.string() + ": cannot be read: " + error.code().message() + "; beginning with 0");
    }
  }
  return 0.0;
}

void DelayFile::Write(double delayMs) const {
  try {
    port::ReplaceFile(m_File, fmt::format("{}\n", delayMs));
  } catch (const std::system_error& error) {
    m_Report(m_File.string() + ": cannot be written: " + error.code().message());
  }
}

}  // namespace orvex::tools
