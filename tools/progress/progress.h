// How far a long command is, for a person at a terminal: one line on stderr that is rewritten.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

namespace orvex::tools {

// Where the line is shown, and by what time.
struct ProgressScreen {
  bool isTerminal;
  std::function<std::chrono::steady_clock::time_point()> now;

  // stderr as it is, and the clock.
  static ProgressScreen Stderr();
};

class Progress {
public:
  // `unit`: what is counted, in the plural.
  Progress(std::string program, std::string unit, std::size_t total, ProgressScreen screen = ProgressScreen::Stderr());
  // Ends the line.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Says nothing in the first second, and nothing at all where stderr is no terminal.
  void Show(std::size_t done);

  double ElapsedS() const;

private:
  const std::string m_Program;
  const std::string m_Unit;
  const std::size_t m_Total;
  const ProgressScreen m_Screen;
  const std::chrono::steady_clock::time_point m_Start = m_Screen.now();
  double m_NextS = 1.0;
  bool m_IsShown = false;
};

}  // namespace orvex::tools
