// The line is rewritten twice a second.
#include "progress/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace orvex::tools {

ProgressScreen ProgressScreen::Stderr() {
  return {::isatty(STDERR_FILENO) == 1, std::chrono::steady_clock::now};
}

Progress::Progress(std::string program, std::string unit, std::size_t total, ProgressScreen screen)
    : m_Program(std::move(program)), m_Unit(std::move(unit)), m_Total(total), m_Screen(std::move(screen)) {}

Progress::~Progress() {
  if (m_IsShown) {
    std::fputc('\n', stderr);
  }
}

double Progress::ElapsedS() const {
  return std::chrono::duration<double>(m_Screen.now() - m_Start).count();
}

void Progress::Show(std::size_t done) {
  const double elapsedS = ElapsedS();
  if (!m_Screen.isTerminal || elapsedS < m_NextS) {
    return;
  }
  m_NextS = elapsedS + 0.5;
  const double leftS =
      elapsedS * static_cast<double>(m_Total - done) / static_cast<double>(std::max<std::size_t>(done, 1));
  std::fprintf(stderr, "\r%s: %zu of %zu %s, %.0f s left   ", m_Program.c_str(), done, m_Total, m_Unit.c_str(), leftS);
  std::fflush(stderr);
  m_IsShown = true;
}

}  // namespace orvex::tools
