// A terminal gets one line that is rewritten twice a second, anything else a line every 10 s.
#include "progress/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace orvex::tools {

Progress::Progress(std::string program, std::string unit, std::size_t total)
    : m_Program(std::move(program)),
      m_Unit(std::move(unit)),
      m_Total(total),
      m_Terminal(::isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  if (m_Terminal && m_Shown) {
    std::fputc('\n', stderr);
  }
}

double Progress::ElapsedS() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_Start).count();
}

void Progress::Show(std::size_t done) {
  const double elapsedS = ElapsedS();
  if (elapsedS < m_NextS) {
    return;
  }
  m_NextS = elapsedS + (m_Terminal ? 0.5 : 10.0);
  const double leftS =
      elapsedS * static_cast<double>(m_Total - done) / static_cast<double>(std::max<std::size_t>(done, 1));
  std::fprintf(stderr, "%s%s: %zu of %zu %s, %.0f s left%s", m_Terminal ? "\r" : "", m_Program.c_str(), done, m_Total,
               m_Unit.c_str(), leftS, m_Terminal ? "   " : "\n");
  std::fflush(stderr);
  m_Shown = true;
}

}  // namespace orvex::tools
