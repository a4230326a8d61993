// The output delay service and the audio control object in virtual time.
#include "orvex/platform/output_delay.h"

#include "world/world.h"

using orvex::world::World;

namespace {

int ResultFor(int kind) {
  constexpr int kUnknownKind = -2;
  return kind == kDelayKindSpdif ? 0 : kUnknownKind;
}

}  // namespace

int avoc_get_delay(std::uint32_t* delayMs, int kind) {
  World& world = World::Current();
  const int result = static_cast<int>(world.answers.Take("avoc_get_delay").value_or(ResultFor(kind)));
  if (result == 0) {
    *delayMs = world.delayMs;
  }
  world.Call("avoc_get_delay(" + std::to_string(kind) + ") = " + std::to_string(result));
  return result;
}

int avoc_set_delay(std::uint32_t delayMs, int kind) {
  World& world = World::Current();
  const int result = static_cast<int>(world.answers.Take("avoc_set_delay").value_or(ResultFor(kind)));
  if (result == 0) {
    world.delayMs = delayMs;
    if (world.room != nullptr) {
      world.room->SetSpdifDelayMs(delayMs);
    }
  }
  world.Call("avoc_set_delay(" + std::to_string(delayMs) + ", " + std::to_string(kind) +
             ") = " + std::to_string(result));
  return result;
}

namespace {

class AudioControl : public IAudioControl {
public:
  int getSpdifOutDelay(std::uint32_t* delayMs) override {
    const int result = static_cast<int>(World::Current().answers.Take("getSpdifOutDelay").value_or(0));
    if (result == 0) {
      *delayMs = World::Current().delayMs;
    }
    World::Current().Call("getSpdifOutDelay() = " + std::to_string(result));
    return result;
  }
  int getSpdifOutCodec(std::int32_t* codec) override {
    const int result = static_cast<int>(World::Current().answers.Take("getSpdifOutCodec").value_or(0));
    if (result == 0) {
      *codec = World::Current().codec;
    }
    World::Current().Call("getSpdifOutCodec() = " + std::to_string(result));
    return result;
  }
};

}  // namespace

IAudioControl* IAudioControl::getInstance() {
  static AudioControl control;
  World& world = World::Current();
  const bool exists = world.hasAudioControl && !world.answers.Take("IAudioControl::getInstance").has_value();
  world.Call(std::string("IAudioControl::getInstance() = ") + (exists ? "object" : "null"));
  return exists ? &control : nullptr;
}
