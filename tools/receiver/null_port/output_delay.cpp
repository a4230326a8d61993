// An output whose delay is 0 and stays so.
#include "orvex/platform/output_delay.h"

int avoc_get_delay(std::uint32_t* delayMs, int /*kind*/) {
  *delayMs = 0;
  return kDelayDone;
}
int avoc_set_delay(std::uint32_t /*delayMs*/, int /*kind*/) {
  return kDelayDone;
}
IAudioControl* IAudioControl::getInstance() {
  return nullptr;
}
