// The television's service layer in virtual time.
#include "orvex/platform/tv_service.h"

#include "world/world.h"

using orvex::world::World;

namespace {

class AVControl : public IAVControl {
public:
  int getResolution(std::int32_t* resolution, TvResolution* record) override {
    World& world = World::Current();
    return world.Answer("getResolution", std::to_string(*resolution), kTvDone, [&] {
      *resolution = world.resolution;
      record->frequency = world.frequency;
    });
  }
};

class SourceControl : public ISourceControl {
public:
  int getCurrentSource(ESource* source) override {
    World& world = World::Current();
    return world.Answer("getCurrentSource", "", kTvDone, [&] { *source = static_cast<ESource>(world.source); });
  }
};

// A positive answer stands for success that hands out no object, this one for a failure that hands one out all the
// same.
constexpr int kFailsButHandsOut = -1000;

template <class Object, class Interface>
int Create(const char* function, int profile, int screen, Interface** control) {
  static Object object;
  const std::string arguments = std::to_string(profile) + ", " + std::to_string(screen);
  const int result = World::Current().Answer(function, arguments, kTvDone);
  if (result == kTvDone || result == kFailsButHandsOut) {
    *control = &object;
  }
  return result > 0 ? kTvDone : result;
}

}  // namespace

int tv_get_hdmi_input_count() {
  World::Current().Call("tv_get_hdmi_input_count()");
  return static_cast<int>(World::Current().answers.Take("tv_get_hdmi_input_count").value_or(3));
}

const TvActivityInfo* tv_get_activity_info_by_source(int source) {
  static TvActivityInfo info{};
  World& world = World::Current();
  world.Call("tv_get_activity_info_by_source(" + std::to_string(source) + ")");
  if (world.answers.Take("tv_get_activity_info_by_source").has_value() || !world.brand.has_value()) {
    return nullptr;
  }
  info = {world.deviceType, world.brand->c_str()};
  return &info;
}

int tv_create_av_control(int profile, int screen, IAVControl** control) {
  return Create<AVControl>("tv_create_av_control", profile, screen, control);
}

int tv_create_source_control(int profile, int screen, ISourceControl** control) {
  return Create<SourceControl>("tv_create_source_control", profile, screen, control);
}
