// Splits received bytes into lines.
#include "linux/line_reader.h"

namespace orvex::port {

LineReader::Found LineReader::Next(std::string* line) {
  std::size_t end = m_Bytes.find('\n');
  if (m_IsSkipping && end != std::string::npos) {
    m_Bytes.erase(0, end + 1);
    m_IsSkipping = false;
    end = m_Bytes.find('\n');
  }
  if (m_IsSkipping) {
    m_Bytes.clear();
    return Found::kNothing;
  }
  if (end == std::string::npos && m_Bytes.size() <= m_MaximumBytes) {
    return Found::kNothing;
  }
  if (end > m_MaximumBytes) {
    m_IsSkipping = true;
    return Found::kTooLong;
  }
  *line = m_Bytes.substr(0, end);
  m_Bytes.erase(0, end + 1);
  return Found::kLine;
}

LineReader::Found LineReader::Last(std::string* line) {
  if (m_Bytes.empty() || m_IsSkipping) {
    return Found::kNothing;
  }
  line->swap(m_Bytes);
  m_Bytes.clear();
  return Found::kLine;
}

}  // namespace orvex::port
