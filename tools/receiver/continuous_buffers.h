// Numbers of buffers that go on where the receiver begins again at 1.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "Application/OrvexReceiverObserver.h"

namespace orvex::tools {

// Hands each step on to all observers, in their order, with such numbers.
class ContinuousBuffers : public OrvexReceiverObserver {
public:
  explicit ContinuousBuffers(std::vector<OrvexReceiverObserver*> observers) : m_Observers(std::move(observers)) {}

  // A recording begins.
  void Restart() { m_Before = m_Last = 0; }
  // `buffer`: the receiver's number of the last buffer. To be told in order, and at least once in a round.
  std::int32_t CountOn(std::int32_t buffer) {
    m_Before += buffer < m_Last ? kRound : 0;
    m_Last = buffer;
    return m_Before + buffer;
  }

  void OnBlock(std::int32_t buffer, const ToneMagnitudes& magnitudes, const Levels& ambient) override {
    Tell(&OrvexReceiverObserver::OnBlock, CountOn(buffer), magnitudes, ambient);
  }
  void OnAmbientKnown(std::int32_t buffer, const Levels& means) override {
    Tell(&OrvexReceiverObserver::OnAmbientKnown, CountOn(buffer), means);
  }
  void OnFirstTone(std::int32_t buffer, Tone tone, double needed) override {
    Tell(&OrvexReceiverObserver::OnFirstTone, CountOn(buffer), tone, needed);
  }
  void OnSequenceError(std::int32_t buffer, Tone tone, std::int32_t first, double needed) override {
    const std::int32_t now = CountOn(buffer);
    Tell(&OrvexReceiverObserver::OnSequenceError, now, tone, Earlier(first), needed);
  }
  void OnNoisyTone(std::int32_t buffer, Tone tone, std::int32_t count) override {
    Tell(&OrvexReceiverObserver::OnNoisyTone, CountOn(buffer), tone, count);
  }
  void OnPair(std::int32_t buffer, Tone tone, std::int32_t first, double differenceS) override {
    const std::int32_t now = CountOn(buffer);
    Tell(&OrvexReceiverObserver::OnPair, now, tone, Earlier(first), differenceS);
  }
  void OnAbnormalInput(std::int32_t buffer) override { Tell(&OrvexReceiverObserver::OnAbnormalInput, CountOn(buffer)); }
  void OnExtend(std::int32_t buffer) override { Tell(&OrvexReceiverObserver::OnExtend, CountOn(buffer)); }

private:
  static constexpr std::int32_t kRound = 100000;

  template <class... Parameters, class... Values>
  void Tell(void (OrvexReceiverObserver::*step)(Parameters...), const Values&... values) const {
    for (OrvexReceiverObserver* observer : m_Observers) {
      (observer->*step)(values...);
    }
  }
  // `buffer`: the receiver's number of a buffer that is no later than the last one.
  std::int32_t Earlier(std::int32_t buffer) const { return m_Before + buffer - (buffer > m_Last ? kRound : 0); }

  const std::vector<OrvexReceiverObserver*> m_Observers;
  std::int32_t m_Last = 0;
  std::int32_t m_Before = 0;  // in the rounds that are over
};

}  // namespace orvex::tools
