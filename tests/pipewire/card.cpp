// A device that this process exports.
#include "pipewire/card.h"

#include <pipewire/pipewire.h>
#include <spa/monitor/utils.h>
#include <spa/param/route.h>
#include <spa/pod/builder.h>
#include <spa/pod/parser.h>
#include <spa/utils/result.h>

#include <array>
#include <cerrno>
#include <stdexcept>

namespace orvex::integration {
namespace {

using pipewire::ThreadLoop;

constexpr std::int32_t kRouteIndex = 2;
constexpr std::int32_t kProfileDevice = 5;

}  // namespace

Card::Card(TestClient& client) : m_Client(client) {
  static const spa_device_methods kMethods = [] {
    spa_device_methods methods{};
    methods.version = SPA_VERSION_DEVICE_METHODS;
    methods.add_listener = AddListener;
    methods.sync = Sync;
    methods.enum_params = EnumParams;
    methods.set_param = SetParam;
    return methods;
  }();
  spa_hook_list_init(&m_Hooks);
  m_Device.iface.type = SPA_TYPE_INTERFACE_Device;
  m_Device.iface.version = SPA_VERSION_DEVICE;
  m_Device.iface.cb.funcs = &kMethods;
  m_Device.iface.cb.data = this;
  {
    const ThreadLoop::Lock lock(m_Client.GetLoop());
    std::array<spa_dict_item, 2> items{{{"device.name", "card"}, {"media.class", "Audio/Device"}}};
    const spa_dict properties{0, items.size(), items.data()};
    m_Proxy = static_cast<pw_proxy*>(
        pw_core_export(m_Client.GetConnection().GetCore(), SPA_TYPE_INTERFACE_Device, &properties, &m_Device, 0));
  }
  const bool isBound =
      m_Proxy != nullptr && m_Client.WaitUntil([&] { return pw_proxy_get_bound_id(m_Proxy) != SPA_ID_INVALID; });
  if (!isBound) {
    throw std::runtime_error("waited in vain for the card");
  }
  {
    const ThreadLoop::Lock lock(m_Client.GetLoop());
    m_Output = pipewire::CreateNullSink(m_Client.GetConnection(),
                                        {{PW_KEY_NODE_NAME, kOutput},
                                         {PW_KEY_MEDIA_CLASS, "Audio/Sink"},
                                         {"audio.position", "FL,FR"},
                                         {PW_KEY_DEVICE_ID, std::to_string(pw_proxy_get_bound_id(m_Proxy))},
                                         {"card.profile.device", std::to_string(kProfileDevice)}},
                                        [](const std::string&) {});
  }
  if (!m_Client.WaitForNode(kOutput)) {
    throw std::runtime_error("waited in vain for the card's output");
  }
}

Card::~Card() {
  const ThreadLoop::Lock lock(m_Client.GetLoop());
  m_Output.reset();
  pw_proxy_destroy(m_Proxy);
}

pipewire::SoundProps Card::GetSound() {
  const ThreadLoop::Lock lock(m_Client.GetLoop());
  return m_Sound;
}

void Card::SetSound(const pipewire::SoundProps& sound) {
  const ThreadLoop::Lock lock(m_Client.GetLoop());
  m_Sound = sound;
  ++m_Serial;
  TellInfo();
}

int Card::AddListener(void* self, spa_hook* listener, const spa_device_events* events, void* data) {
  auto& card = *static_cast<Card*>(self);
  spa_hook_list save;
  spa_hook_list_isolate(&card.m_Hooks, &save, listener, events, data);
  card.TellInfo();
  spa_hook_list_join(&card.m_Hooks, &save);
  return 0;
}

int Card::Sync(void* self, int sequence) {
  auto& card = *static_cast<Card*>(self);
  spa_device_emit_result(&card.m_Hooks, sequence, 0, 0, nullptr);
  return 0;
}

int Card::EnumParams(void* self, int sequence, std::uint32_t id, std::uint32_t start, std::uint32_t /*count*/,
                     const spa_pod* /*filter*/) {
  auto& card = *static_cast<Card*>(self);
  if (id != SPA_PARAM_Route || start > 0) {
    return 0;
  }
  std::array<std::uint8_t, 1024> bytes{};
  spa_pod_builder builder{};
  spa_pod_builder_init(&builder, bytes.data(), bytes.size());
  spa_pod_frame frame{};
  spa_pod_builder_push_object(&builder, &frame, SPA_TYPE_OBJECT_ParamRoute, SPA_PARAM_Route);
  spa_pod_builder_prop(&builder, SPA_PARAM_ROUTE_index, 0);
  spa_pod_builder_int(&builder, kRouteIndex);
  spa_pod_builder_prop(&builder, SPA_PARAM_ROUTE_direction, 0);
  spa_pod_builder_id(&builder, SPA_DIRECTION_OUTPUT);
  spa_pod_builder_prop(&builder, SPA_PARAM_ROUTE_device, 0);
  spa_pod_builder_int(&builder, kProfileDevice);
  spa_pod_builder_prop(&builder, SPA_PARAM_ROUTE_props, 0);
  pipewire::AddSoundProps(&builder, SPA_PARAM_Route, card.m_Sound);
  spa_result_device_params result{};
  result.id = id;
  result.index = 0;
  result.next = 1;
  result.param = static_cast<spa_pod*>(spa_pod_builder_pop(&builder, &frame));
  spa_device_emit_result(&card.m_Hooks, sequence, 0, SPA_RESULT_TYPE_DEVICE_PARAMS, &result);
  return 0;
}

int Card::SetParam(void* self, std::uint32_t id, std::uint32_t /*flags*/, const spa_pod* parameter) {
  auto& card = *static_cast<Card*>(self);
  std::int32_t index = 0;
  std::int32_t device = 0;
  const spa_pod* props = nullptr;
  if (id != SPA_PARAM_Route ||
      spa_pod_parse_object(parameter, SPA_TYPE_OBJECT_ParamRoute, nullptr, SPA_PARAM_ROUTE_index, SPA_POD_Int(&index),
                           SPA_PARAM_ROUTE_device, SPA_POD_Int(&device), SPA_PARAM_ROUTE_props,
                           SPA_POD_OPT_Pod(&props)) < 0 ||
      index != kRouteIndex || device != kProfileDevice || props == nullptr) {
    return -EINVAL;
  }
  const pipewire::SoundProps wanted = pipewire::ReadSoundProps(props);
  card.m_Sound.isMuted = wanted.isMuted ? wanted.isMuted : card.m_Sound.isMuted;
  card.m_Sound.channelVolumes = wanted.channelVolumes.empty() ? card.m_Sound.channelVolumes : wanted.channelVolumes;
  ++card.m_Serial;
  card.TellInfo();
  return 0;
}

void Card::TellInfo() {
  const std::uint32_t serial = m_Serial % 2 == 0 ? 0 : SPA_PARAM_INFO_SERIAL;
  std::array<spa_param_info, 1> parameters{{{SPA_PARAM_Route, SPA_PARAM_INFO_READWRITE | serial, 0, 0, {}}}};
  spa_device_info info{};
  info.version = SPA_VERSION_DEVICE_INFO;
  info.change_mask = SPA_DEVICE_CHANGE_MASK_PARAMS;
  info.n_params = parameters.size();
  info.params = parameters.data();
  spa_device_emit_info(&m_Hooks, &info);
}

}  // namespace orvex::integration
