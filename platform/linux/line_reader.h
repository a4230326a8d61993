// Cuts a stream of bytes into lines of bounded length.
#pragma once

#include <cstddef>
#include <string>

namespace orvex::port {

class LineReader {
public:
  enum class Found { kNothing, kLine, kTooLong };

  explicit LineReader(std::size_t maximumBytes) : m_MaximumBytes(maximumBytes) {}

  void Feed(const char* bytes, std::size_t count) { m_Bytes.append(bytes, count); }
  // Takes the next line, without its line break. kTooLong is told once per line, whose rest is skipped.
  Found Next(std::string* line);
  // At the stream's end: takes a last line that has no line break.
  Found Last(std::string* line);

private:
  std::size_t m_MaximumBytes;
  std::string m_Bytes;
  bool m_IsSkipping = false;
};

}  // namespace orvex::port
