// Sets mute and volume and waits until they are read.
#include "pipewire/output_sound.h"

#include <pipewire/keys.h>
#include <spa/param/props.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "pipewire/client/pipewire_error.h"
#include "pipewire/client/volume_scale.h"

namespace orvex::pipewire {
namespace {

template <typename Number>
std::optional<Number> NumberOf(const Properties& properties, const char* key) {
  const auto found = properties.find(key);
  Number number = 0;
  if (found == properties.end()) {
    return std::nullopt;
  }
  const std::string& text = found->second;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() ? std::optional(number) : std::nullopt;
}

bool IsComplete(const SoundProps& sound) {
  return sound.isMuted && !sound.channelVolumes.empty();
}

// What is not wanted may be anything.
bool IsAsWanted(const SoundProps& sound, const SoundProps& wanted) {
  const auto& now = sound.channelVolumes;
  const auto& then = wanted.channelVolumes;
  return (!wanted.isMuted || sound.isMuted == wanted.isMuted) &&
         (then.empty() || std::equal(now.begin(), now.end(), then.begin(), then.end(), IsSameVolume));
}

}  // namespace

OutputSound::OutputSound(Session& session, const std::string& node) : m_Session(session), m_Name(node) {
  const Object* const object = session.GetConnection().FindNode(node);
  if (object == nullptr) {
    throw PipeWireError("the output \"" + node + "\" is not there");
  }
  NodeProxy::Callbacks callbacks;
  callbacks.onProperties = [this](const Properties& properties) {
    m_Properties = properties;
    m_Session.Notify();
  };
  callbacks.onParameter = [this](std::uint32_t /*parameter*/, const spa_pod* value) {
    m_NodeSound = ReadSoundProps(value);
    m_Session.Notify();
  };
  m_Node = std::make_unique<NodeProxy>(session.GetConnection(), object->id, std::vector<std::uint32_t>{SPA_PARAM_Props},
                                       callbacks);
  if (!session.WaitUntil([this] { return !m_Properties.empty() && IsComplete(m_NodeSound); })) {
    throw PipeWireError("the output \"" + node + "\" does not tell its volume");
  }
  if (const auto place = FindRoute()) {
    m_Route = std::make_unique<DeviceRoute>(session.GetConnection(), *place, [this] { m_Session.Notify(); });
    // A card whose profile has no routes tells of none.
    if (!session.WaitUntil([this] { return m_Route->GetSound() && IsComplete(*m_Route->GetSound()); })) {
      m_Route.reset();
    }
  }
}

std::optional<RoutePlace> OutputSound::FindRoute() const {
  const auto device = NumberOf<std::uint32_t>(m_Properties, PW_KEY_DEVICE_ID);
  const auto profileDevice = NumberOf<std::int32_t>(m_Properties, "card.profile.device");
  return device && profileDevice ? std::optional(RoutePlace{*device, *profileDevice}) : std::nullopt;
}

const SoundProps& OutputSound::Get() const {
  return m_Route ? *m_Route->GetSound() : m_NodeSound;
}

void OutputSound::Set(const SoundProps& wanted) {
  if (m_Route) {
    m_Route->Set(wanted);
  } else {
    std::array<std::uint8_t, 1024> bytes{};
    spa_pod_builder builder{};
    spa_pod_builder_init(&builder, bytes.data(), bytes.size());
    AddSoundProps(&builder, SPA_PARAM_Props, wanted);
    m_Node->Set(SPA_PARAM_Props, reinterpret_cast<const spa_pod*>(bytes.data()));
  }
  if (!m_Session.WaitUntil([&] { return IsAsWanted(Get(), wanted); })) {
    throw PipeWireError("the output \"" + m_Name + "\" does not take its volume");
  }
}

}  // namespace orvex::pipewire
