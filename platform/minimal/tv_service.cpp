// No service layer to query.
#include "orvex/platform/tv_service.h"

int tv_get_hdmi_input_count() {
  return kTvFailed;
}

const TvActivityInfo* tv_get_activity_info_by_source(int /*source*/) {
  return nullptr;
}

int tv_create_av_control(int /*profile*/, int /*screen*/, IAVControl** /*control*/) {
  return kTvFailed;
}

int tv_create_source_control(int /*profile*/, int /*screen*/, ISourceControl** /*control*/) {
  return kTvFailed;
}
