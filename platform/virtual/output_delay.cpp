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
constexpr int kUnreachable = -1;
constexpr int kUnknownKind = -2;

template <typename Number>
int Read(const char* name, Number* target) {
  std::int64_t number = 0;
  if (target == nullptr || orvex::virtual_tv::ReadNumber(name, &number) != AccessResult::kDone) {
    return kUnreachable;
  }
  *target = static_cast<Number>(number);
  return 0;
}

class AudioControl final : public IAudioControl {
public:
  int getSpdifOutDelay(std::uint32_t* delayMs) override {
    const auto fault = Faults::Instance().Next(Fault::kAudioControlDelay);
    return fault ? *fault : Read(kDelayName, delayMs);
  }

  int getSpdifOutCodec(std::int32_t* codec) override {
    const auto fault = Faults::Instance().Next(Fault::kAudioControlCodec);
    return fault ? *fault : Read(kCodecName, codec);
  }
};

}  // namespace

int avoc_get_delay(std::uint32_t* delayMs, int kind) {
  if (const auto fault = Faults::Instance().Next(Fault::kDelayGet)) {
    return *fault;
  }
  return kind == kDelayKindSpdif ? Read(kDelayName, delayMs) : kUnknownKind;
}

int avoc_set_delay(std::uint32_t delayMs, int kind) {
  if (const auto fault = Faults::Instance().Next(Fault::kDelaySet)) {
    return *fault;
  }
  if (kind != kDelayKindSpdif) {
    return kUnknownKind;
  }
  return orvex::virtual_tv::WriteNumber(kDelayName, delayMs) == AccessResult::kDone ? 0 : kUnreachable;
}

IAudioControl* IAudioControl::getInstance() {
  static AudioControl control;
  return Faults::Instance().IsAbsent(Fault::kAudioControl) ? nullptr : &control;
}
