// Two listeners in the place of one.
#pragma once

#include "receiver/receiver_rig.h"

namespace orvex::tools {

// Both hear everything, `first` before `second`. They must outlive the pair.
class ListenerPair : public ReceiverListener {
public:
  ListenerPair(ReceiverListener& first, ReceiverListener& second) : m_First(first), m_Second(second) {}

  void OnBlock(std::int32_t buffer, const BlockLevels& levels) override {
    Tell(&ReceiverListener::OnBlock, buffer, levels);
  }
  void OnAmbient(std::int32_t buffer) override { Tell(&ReceiverListener::OnAmbient, buffer); }
  void OnFirst(std::int32_t buffer, Tone tone) override { Tell(&ReceiverListener::OnFirst, buffer, tone); }
  void OnSequence(std::int32_t buffer) override { Tell(&ReceiverListener::OnSequence, buffer); }
  void OnNoisy(std::int32_t buffer, Tone tone, std::int32_t count) override {
    Tell(&ReceiverListener::OnNoisy, buffer, tone, count);
  }
  void OnResult(std::int32_t buffer, std::int32_t first, std::int32_t second, double differenceS) override {
    Tell(&ReceiverListener::OnResult, buffer, first, second, differenceS);
  }
  void OnAbnormal(std::int32_t buffer) override { Tell(&ReceiverListener::OnAbnormal, buffer); }
  void OnExtend(std::int32_t buffer) override { Tell(&ReceiverListener::OnExtend, buffer); }

private:
  template <typename Method, typename... Arguments>
  void Tell(Method method, const Arguments&... arguments) {
    (m_First.*method)(arguments...);
    (m_Second.*method)(arguments...);
  }

  ReceiverListener& m_First;
  ReceiverListener& m_Second;
};

}  // namespace orvex::tools
