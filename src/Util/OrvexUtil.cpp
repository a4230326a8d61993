// Asks the service layer and the audio control, and logs what they answer.
#include "Util/OrvexUtil.h"

#include "Util/OrvexLog.h"
#include "orvex/platform/output_delay.h"

namespace {

constexpr int kActiveDeviceSource = 99;
constexpr int kProfile = 1;
constexpr int kMainScreen = 0;
constexpr std::int32_t kResolutionSelector = 2;

}  // namespace

void OrvexUtil::GetDeviceInfo(std::string& brandName, std::int32_t& deviceType) {
  brandName = "none";
  deviceType = -1;
  const TvActivityInfo* info = tv_get_activity_info_by_source(kActiveDeviceSource);
  if (info == nullptr) {
    ORVEX_INFO("activity info is null");
    return;
  }
  brandName = info->brandName;
  deviceType = info->deviceType;
  ORVEX_INFO("type = %d, brandName = %s", deviceType, brandName.c_str());
}

void OrvexUtil::GetSourceInfo(std::string& videoKind, std::uint32_t& resolution, std::uint32_t& frequency) {
  videoKind = "none";
  resolution = 0;
  frequency = 0;
  IAVControl* control = nullptr;
  if (tv_create_av_control(kProfile, kMainScreen, &control) != kTvDone || control == nullptr) {
    ORVEX_FAILURE("Create Resolution Control failed");
    return;
  }
  std::int32_t code = kResolutionSelector;
  TvResolution record{};
  static_cast<void>(control->getResolution(&code, &record));
  videoKind = "tv";
  resolution = static_cast<std::uint32_t>(code);
  frequency = static_cast<std::uint32_t>(record.frequency);
  ORVEX_INFO("resolution = %d, frequency = %d", code, record.frequency);
}

void OrvexUtil::GetCurrentSource(ESource& source) {
  source = ESource{};
  ISourceControl* control = nullptr;
  static_cast<void>(tv_create_source_control(kProfile, kMainScreen, &control));
  if (control == nullptr) {
    ORVEX_FAILURE("Can not get Source Control.");
  } else if (control->getCurrentSource(&source) < 0) {
    ORVEX_FAILURE("Can not Set Source by Source Control.");
  }
  ORVEX_INFO("source = %d", static_cast<int>(source));
}

void OrvexUtil::GetSPDIFOUTCodec(std::uint32_t& codec) {
  std::int32_t type = 0;
  IAudioControl* control = IAudioControl::getInstance();
  if (control != nullptr) {
    static_cast<void>(control->getSpdifOutCodec(&type));
  }
  ORVEX_INFO("type = %d", type);
  codec = static_cast<std::uint32_t>(type);
}
