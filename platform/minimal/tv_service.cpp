// No service layer to query.
#include "orvex/platform/tv_service.h"

namespace {

constexpr int kFailed = -1;

}  // namespace

int tv_get_hdmi_input_count() {
  return kFailed;
}

const TvActivityInfo* tv_get_activity_info_by_source(int /*source*/) {
  return nullptr;
}

int tv_create_av_control(int /*profile*/, int /*screen*/, IAVControl** /*control*/) {
  return kFailed;
}

int tv_create_source_control(int /*profile*/, int /*screen*/, ISourceControl** /*control*/) {
  return kFailed;
}
