// No output delay service, no audio control object.
#include "orvex/platform/output_delay.h"

namespace {

constexpr int kUnreachable = -1;
constexpr int kUnknownKind = -2;

int Failure(int kind) {
  return kind == kDelayKindSpdif ? kUnreachable : kUnknownKind;
}

}  // namespace

int avoc_get_delay(std::uint32_t* /*delayMs*/, int kind) {
  return Failure(kind);
}

int avoc_set_delay(std::uint32_t /*delayMs*/, int kind) {
  return Failure(kind);
}

IAudioControl* IAudioControl::getInstance() {
  return nullptr;
}
