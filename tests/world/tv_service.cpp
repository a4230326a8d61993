// The television's service layer in virtual time.
#include "orvex/platform/tv_service.h"

#include "world/world.h"

using orvex::world::World;

namespace {

int Result(const char* function) {
  return static_cast<int>(World::Current().answers.Take(function).value_or(0));
}

class AVControl : public IAVControl {
public:
  int getResolution(std::int32_t* resolution, TvResolution* record) override {
    const int result = Result("getResolution");
    World::Current().Call("getResolution(" + std::to_string(*resolution) + ") = " + std::to_string(result));
    if (result == 0) {
      *resolution = World::Current().resolution;
      record->frequency = World::Current().frequency;
    }
    return result;
  }
};

class SourceControl : public ISourceControl {
public:
  int getCurrentSource(ESource* source) override {
    const int result = Result("getCurrentSource");
    World::Current().Call("getCurrentSource() = " + std::to_string(result));
    if (result == 0) {
      *source = static_cast<ESource>(World::Current().source);
    }
    return result;
  }
};

// A positive answer stands for success that hands out no object, this one for a failure that hands one out all the
// same.
constexpr int kFailsButHandsOut = -1000;

template <class Object, class Interface>
int Create(const char* function, int profile, int screen, Interface** control) {
  static Object object;
  const int result = Result(function);
  World::Current().Call(std::string(function) + "(" + std::to_string(profile) + ", " + std::to_string(screen) +
                        ") = " + std::to_string(result));
  if (result == 0 || result == kFailsButHandsOut) {
    *control = &object;
  }
  return result > 0 ? 0 : result;
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
