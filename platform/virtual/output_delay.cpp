// The output delay service and the audio control object: the files delay/spdif and tv/codec.
#include "orvex/platform/output_delay.h"

#include "virtual/faults.h"
#include "virtual/service_values.h"

namespace {

using orvex::virtual_tv::AccessResult;
using orvex::virtual_tv::Fault;
using orvex::virtual_tv::Faults;

constexpr const char* kDelayName = "delay/spdif";
constexpr const char* kCodecName = "tv/codec";

template <typename Number>
bool Read(const char* name, Number* target) {
  std::int64_t number = 0;
  if (target == nullptr || orvex::virtual_tv::ReadNumber(name, &number) != AccessResult::kDone) {
    return false;
  }
  *target = static_cast<Number>(number);
  return true;
}

class AudioControl final : public IAudioControl {
public:
  int getSpdifOutDelay(std::uint32_t* delayMs) override {
    return Answer(Fault::kAudioControlDelay, kDelayName, delayMs);
  }
  int getSpdifOutCodec(std::int32_t* codec) override { return Answer(Fault::kAudioControlCodec, kCodecName, codec); }

private:
  template <typename Number>
  static int Answer(Fault operation, const char* name, Number* target) {
    if (const auto fault = Faults::Instance().Next(operation)) {
      return *fault;
    }
    return Read(name, target) ? kAudioControlDone : kAudioControlFailed;
  }
};

}  // namespace

int avoc_get_delay(std::uint32_t* delayMs, int kind) {
  if (const auto fault = Faults::Instance().Next(Fault::kDelayGet)) {
    return *fault;
  }
  if (kind != kDelayKindSpdif) {
    return kDelayUnknownKind;
  }
  return Read(kDelayName, delayMs) ? kDelayDone : kDelayUnreachable;
}

int avoc_set_delay(std::uint32_t delayMs, int kind) {
  if (const auto fault = Faults::Instance().Next(Fault::kDelaySet)) {
    return *fault;
  }
  if (kind != kDelayKindSpdif) {
    return kDelayUnknownKind;
  }
  return orvex::virtual_tv::WriteNumber(kDelayName, delayMs) == AccessResult::kDone ? kDelayDone : kDelayUnreachable;
}

IAudioControl* IAudioControl::getInstance() {
  static AudioControl control;
  return Faults::Instance().IsAbsent(Fault::kAudioControl) ? nullptr : &control;
}
