// How far a long command is, on stderr.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace orvex::tools {

class Progress {
public:
  // `unit`: what is counted, in the plural.
  Progress(std::string program, std::string unit, std::size_t total);
  // Ends the line that is rewritten on a terminal.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Says nothing in the first second; then rewrites one line on a terminal, and elsewhere writes one every 10 s.
  void Show(std::size_t done);

  double ElapsedS() const;

private:
  const std::string m_Program;
  const std::string m_Unit;
  const std::size_t m_Total;
  const bool m_Terminal;
  const std::chrono::steady_clock::time_point m_Start = std::chrono::steady_clock::now();
  double m_NextS = 1.0;
  bool m_Shown = false;
};

}  // namespace orvex::tools
