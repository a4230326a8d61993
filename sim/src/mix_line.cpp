// Add() is the models' innermost loop, written so that the compiler can vectorise it.
#include "sim/src/mix_line.h"

#include <algorithm>

namespace orvex::sim {
namespace {

// Taken samples stay in front until there are this many: moving the rest then costs little per sample.
constexpr std::size_t kCompactFrom = 65536;

void AddScaled(float* __restrict__ target, const float* __restrict__ source, std::size_t count, float gain) {
  for (std::size_t i = 0; i < count; ++i) {
    target[i] += gain * source[i];
  }
}

}  // namespace

void MixLine::Reset() {
  m_Next = 0;
  m_Begin = 0;
  m_Samples.clear();
}

void MixLine::Add(std::int64_t index, const std::vector<float>& samples, float gain) {
  const auto size = static_cast<std::int64_t>(samples.size());
  const std::int64_t skip = std::clamp<std::int64_t>(m_Next - index, 0, size);
  if (skip == size) {
    return;
  }
  const std::size_t place = m_Begin + static_cast<std::size_t>(index + skip - m_Next);
  const auto count = static_cast<std::size_t>(size - skip);
  if (m_Samples.size() < place + count) {
    m_Samples.resize(place + count, 0.0F);
  }
  AddScaled(m_Samples.data() + place, samples.data() + skip, count, gain);
}

void MixLine::Take(float* samples, std::size_t count) {
  const std::size_t known = std::min(count, m_Samples.size() - m_Begin);
  std::copy_n(m_Samples.data() + m_Begin, known, samples);
  std::fill(samples + known, samples + count, 0.0F);
  m_Next += static_cast<std::int64_t>(count);
  Discard(known);
}

void MixLine::Discard(std::size_t count) {
  m_Begin += count;
  if (m_Begin == m_Samples.size()) {
    m_Samples.clear();
    m_Begin = 0;
  } else if (m_Begin >= kCompactFrom) {
    m_Samples.erase(m_Samples.begin(), m_Samples.begin() + static_cast<std::ptrdiff_t>(m_Begin));
    m_Begin = 0;
  }
}

}  // namespace orvex::sim
