// The delay as the last orvex-delay left it: a file with milliseconds as text.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace orvex::tools {

// `text` as a delay; throws std::invalid_argument with what was expected.
double ParseDelayMs(const std::string& text);

class DelayFile {
public:
  // `report`: takes what goes wrong with the file, which stops nothing.
  DelayFile(std::filesystem::path file, std::function<void(const std::string&)> report);

  // 0 when there is no file, or nothing in it that is a delay.
  double Read() const;
  // Nobody sees half a file.
  void Write(double delayMs) const;

private:
  const std::filesystem::path m_File;
  const std::function<void(const std::string&)> m_Report;
};

}  // namespace orvex::tools
