// Lost blocks are counted in the next whole one, so that a full queue loses no time either.
#include "pipewire/client/block_queue.h"

#include <algorithm>

namespace orvex::pipewire {

std::uint64_t BlockQueue::Put(const std::int16_t* samples, std::size_t count) {
  std::uint64_t ended = 0;
  while (count > 0) {
    const std::size_t part = std::min(count, m_Block.samples.size() - m_Filled);
    std::copy_n(samples, part, m_Block.samples.begin() + static_cast<std::ptrdiff_t>(m_Filled));
    samples += part;
    count -= part;
    m_Filled += part;
    if (m_Filled == m_Block.samples.size()) {
      End();
      ++ended;
    }
  }
  return ended;
}

std::uint64_t BlockQueue::Lose(std::uint64_t count) {
  const std::uint64_t position = m_Filled + count;
  const std::uint64_t ended = position / m_Block.samples.size();
  if (count == 0) {
    return 0;
  }
  m_Block.lostBefore += ended;
  m_Filled = position % m_Block.samples.size();
  // Where the loss ends with a block, the next one is whole.
  m_IsTorn = m_Filled != 0;
  return ended;
}

void BlockQueue::End() {
  if (m_IsTorn || !m_Queue.push(m_Block)) {
    ++m_Block.lostBefore;
  } else {
    m_Block.lostBefore = 0;
  }
  m_Filled = 0;
  m_IsTorn = false;
}

}  // namespace orvex::pipewire
