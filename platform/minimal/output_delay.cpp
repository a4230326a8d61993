// No output delay service, no audio control object.
#include "orvex/platform/output_delay.h"

int avoc_get_delay(std::uint32_t* /*delayMs*/, int /*kind*/) {
  return kDelayUnreachable;
}

int avoc_set_delay(std::uint32_t /*delayMs*/, int /*kind*/) {
  return kDelayUnreachable;
}

IAudioControl* IAudioControl::getInstance() {
  return nullptr;
}
