// The TV service queries: the files below the television's tv/. A missing file is a query that fails.
#include "orvex/platform/tv_service.h"

#include <string>

#include "linux/no_destroy.h"
#include "virtual/faults.h"
#include "virtual/service_values.h"

namespace {

using orvex::virtual_tv::AccessResult;
using orvex::virtual_tv::Fault;
using orvex::virtual_tv::Faults;

bool Read32(const char* name, std::int32_t* target) {
  std::int64_t number = 0;
  if (orvex::virtual_tv::ReadNumber(name, &number) != AccessResult::kDone) {
    return false;
  }
  *target = static_cast<std::int32_t>(number);
  return true;
}

class VideoControl final : public IAVControl {
public:
  int getResolution(std::int32_t* resolution, TvResolution* record) override {
    if (const auto fault = Faults::Instance().Next(Fault::kTvResolution)) {
      return *fault;
    }
    std::int32_t code = 0;
    std::int32_t frequency = 0;
    if (resolution == nullptr || record == nullptr || !Read32("tv/resolution", &code) ||
        !Read32("tv/frequency", &frequency)) {
      return kTvFailed;
    }
    *resolution = code;
    record->frequency = frequency;
    return kTvDone;
  }
};

class SourceControl final : public ISourceControl {
public:
  int getCurrentSource(ESource* source) override {
    if (const auto fault = Faults::Instance().Next(Fault::kTvSource)) {
      return *fault;
    }
    std::int32_t number = 0;
    if (source == nullptr || !Read32("tv/source", &number)) {
      return kTvFailed;
    }
    *source = static_cast<ESource>(number);
    return kTvDone;
  }
};

// Gives out the one control there is: this television has one screen, and every profile sees it.
template <typename Control, typename Interface>
int GiveControl(Fault operation, Interface** target) {
  static Control control;
  if (const auto fault = Faults::Instance().Next(operation)) {
    return *fault;
  }
  if (target == nullptr) {
    return kTvFailed;
  }
  *target = &control;
  return kTvDone;
}

}  // namespace

int tv_get_hdmi_input_count() {
  if (const auto fault = Faults::Instance().Next(Fault::kTvHdmiInputs)) {
    return *fault;
  }
  std::int32_t count = 0;
  return Read32("tv/hdmi_inputs", &count) ? count : kTvFailed;
}

const TvActivityInfo* tv_get_activity_info_by_source(int /*source: one device is connected, on every source*/) {
  // Valid until the next call, as the contract says; one thread calls.
  static const orvex::port::NoDestroy<std::string> brand;
  static TvActivityInfo info{};
  if (Faults::Instance().Next(Fault::kTvActivity)) {
    return nullptr;
  }
  std::string name;
  if (orvex::virtual_tv::ReadText("tv/brand", &name) != AccessResult::kDone ||
      !Read32("tv/device_type", &info.deviceType)) {
    return nullptr;
  }
  *brand = std::move(name);
  info.brandName = brand->c_str();
  return &info;
}

int tv_create_av_control(int /*profile*/, int /*screen*/, IAVControl** control) {
  return GiveControl<VideoControl>(Fault::kTvAvControl, control);
}

int tv_create_source_control(int /*profile*/, int /*screen*/, ISourceControl** control) {
  return GiveControl<SourceControl>(Fault::kTvSourceControl, control);
}
