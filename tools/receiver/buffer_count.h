// Numbers of buffers that go on where the receiver begins again at 1.
#pragma once

#include <cstdint>

namespace orvex::tools {

class BufferCount {
public:
  // `buffer`: the receiver's number of the last buffer. To be told in order, and at least once in a round.
  std::int32_t CountOn(std::int32_t buffer) {
    m_Before += buffer < m_Last ? kRound : 0;
    m_Last = buffer;
    return m_Before + buffer;
  }
  // `buffer`: the receiver's number of a buffer that is no later than the last one.
  std::int32_t Earlier(std::int32_t buffer) const { return m_Before + buffer - (buffer > m_Last ? kRound : 0); }

private:
  static constexpr std::int32_t kRound = 100000;

  std::int32_t m_Last = 0;
  std::int32_t m_Before = 0;  // in the rounds that are over
};

}  // namespace orvex::tools
