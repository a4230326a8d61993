// No output delay service, no audio control object.
#include "orvex/platform/output_delay.h"

namespace {

constexpr int kUnreachable = -1;

}  // namespace

int avoc_get_delay(std::uint32_t* /*delayMs*/, int /*kind*/) {
  return kUnreachable;
}

int avoc_set_delay(std::uint32_t /*delayMs*/, int /*kind*/) {
  return kUnreachable;
}

IAudioControl* IAudioControl::getInstance() {
  return nullptr;
}
