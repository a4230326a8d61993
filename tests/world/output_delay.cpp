// The output delay service and the audio control object in virtual time.
#include "orvex/platform/output_delay.h"

#include "world/world.h"

using orvex::world::World;

namespace {

int ResultFor(int kind) {
  return kind == kDelayKindSpdif ? kDelayDone : kDelayUnknownKind;
}

class AudioControl : public IAudioControl {
public:
  int getSpdifOutDelay(std::uint32_t* delayMs) override {
    World& world = World::Current();
    return world.Answer("getSpdifOutDelay", "", kAudioControlDone, [&] { *delayMs = world.delayMs; });
  }
  int getSpdifOutCodec(std::int32_t* codec) override {
    World& world = World::Current();
    return world.Answer("getSpdifOutCodec", "", kAudioControlDone, [&] { *codec = world.codec; });
  }
};

}  // namespace

int avoc_get_delay(std::uint32_t* delayMs, int kind) {
  World& world = World::Current();
  return world.Answer("avoc_get_delay", std::to_string(kind), ResultFor(kind), [&] { *delayMs = world.delayMs; });
}

int avoc_set_delay(std::uint32_t delayMs, int kind) {
  World& world = World::Current();
  const std::string arguments = std::to_string(delayMs) + ", " + std::to_string(kind);
  return world.Answer("avoc_set_delay", arguments, ResultFor(kind), [&] {
    world.delayMs = delayMs;
    if (world.room != nullptr) {
      world.room->SetSpdifDelayMs(delayMs);
    }
  });
}

IAudioControl* IAudioControl::getInstance() {
  static AudioControl control;
  World& world = World::Current();
  const bool exists = world.hasAudioControl && !world.answers.Take("IAudioControl::getInstance").has_value();
  world.Call(std::string("IAudioControl::getInstance() = ") + (exists ? "object" : "null"));
  return exists ? &control : nullptr;
}
