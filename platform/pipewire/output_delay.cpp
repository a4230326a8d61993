// The output delay service: the delay line of the program orvex-delay. There is no codec to ask for.
#include "orvex/platform/output_delay.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "pipewire/client/delay_node.h"
#include "pipewire/client/pipewire_error.h"
#include "pipewire/session.h"

namespace {

using orvex::pipewire::PipeWireError;
using orvex::pipewire::Session;

// The contract counts whole milliseconds.
std::optional<std::uint32_t> WholeDelayMs() {
  const std::optional<double> delayMs = Session::Instance().GetDelay().GetMs();
  return delayMs ? std::optional(static_cast<std::uint32_t>(std::lround(*delayMs))) : std::nullopt;
}

void CheckDelayNode() {
  Session& session = Session::Instance();
  if (session.GetConnection().FindNode(orvex::pipewire::kDelayNode) == nullptr) {
    throw PipeWireError("orvex-delay does not run");
  }
  if (!session.WaitUntil([] { return WholeDelayMs().has_value(); })) {
    throw PipeWireError("orvex-delay does not tell its delay");
  }
}

int GetDelay(std::uint32_t* delayMs) {
  return Session::Instance().Do(kDelayUnreachable, [&] {
    CheckDelayNode();
    *delayMs = *WholeDelayMs();
    return kDelayDone;
  });
}

// What is longer than the delay line is clamped there.
int SetDelay(std::uint32_t delayMs) {
  constexpr auto kMaximumMs = static_cast<std::uint32_t>(orvex::pipewire::kMaximumDelayMs);
  const std::uint32_t expectedMs = std::min(delayMs, kMaximumMs);
  return Session::Instance().Do(kDelayUnreachable, [&] {
    CheckDelayNode();
    Session& session = Session::Instance();
    session.GetDelay().Set(delayMs);
    if (!session.WaitUntil([&] { return WholeDelayMs() == expectedMs; })) {
      throw PipeWireError("orvex-delay does not take a delay of " + std::to_string(delayMs) + " ms");
    }
    return kDelayDone;
  });
}

class AudioControl final : public IAudioControl {
public:
  int getSpdifOutDelay(std::uint32_t* delayMs) override {
    return delayMs != nullptr && GetDelay(delayMs) == kDelayDone ? kAudioControlDone : kAudioControlFailed;
  }
  int getSpdifOutCodec(std::int32_t* /*codec*/) override { return kAudioControlFailed; }
};

}  // namespace

int avoc_get_delay(std::uint32_t* delayMs, int kind) {
  if (kind != kDelayKindSpdif) {
    return kDelayUnknownKind;
  }
  return delayMs == nullptr ? kDelayUnreachable : GetDelay(delayMs);
}

int avoc_set_delay(std::uint32_t delayMs, int kind) {
  return kind == kDelayKindSpdif ? SetDelay(delayMs) : kDelayUnknownKind;
}

IAudioControl* IAudioControl::getInstance() {
  static AudioControl control;
  return &control;
}
