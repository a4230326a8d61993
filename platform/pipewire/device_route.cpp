// Binds the card's device and asks for its parameter Route whenever that has changed.
#include "pipewire/device_route.h"

#include <pipewire/pipewire.h>
#include <spa/param/route.h>
#include <spa/pod/parser.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "pipewire/client/pipewire_error.h"

namespace orvex::pipewire {

DeviceRoute::DeviceRoute(const Connection& connection, RoutePlace place, std::function<void()> onChange)
    : m_ProfileDevice(place.profileDevice),
      m_OnChange(std::move(onChange)),
      m_Device(static_cast<pw_device*>(
          pw_registry_bind(connection.GetRegistry(), place.device, PW_TYPE_INTERFACE_Device, PW_VERSION_DEVICE, 0))) {
  if (m_Device == nullptr) {
    throw PipeWireError("device " + std::to_string(place.device), errno);
  }
  static const pw_device_events kEvents = [] {
    pw_device_events events{};
    events.version = PW_VERSION_DEVICE_EVENTS;
    events.info = [](void* self, const pw_device_info* info) { static_cast<DeviceRoute*>(self)->OnInfo(*info); };
    events.param = [](void* self, int /*sequence*/, std::uint32_t parameter, std::uint32_t /*index*/,
                      std::uint32_t /*next*/, const spa_pod* value) {
      if (parameter == SPA_PARAM_Route) {
        static_cast<DeviceRoute*>(self)->OnRoute(value);
      }
    };
    return events;
  }();
  pw_device_add_listener(m_Device, &m_Hook, &kEvents, this);
}

DeviceRoute::~DeviceRoute() {
  spa_hook_remove(&m_Hook);
  pw_proxy_destroy(reinterpret_cast<pw_proxy*>(m_Device));
}

// Cards are devices of the session manager. Of such a device the daemon (0.3.65) does not report a parameter's changes
// by itself; it says that there is one.
void DeviceRoute::OnInfo(const pw_device_info& info) {
  const bool hasRoute = std::any_of(info.params, info.params + info.n_params, [](const spa_param_info& parameter) {
    return parameter.id == SPA_PARAM_Route && (parameter.flags & SPA_PARAM_INFO_READ) != 0;
  });
  if (hasRoute && (info.change_mask & PW_DEVICE_CHANGE_MASK_PARAMS) != 0) {
    pw_device_enum_params(m_Device, 0, SPA_PARAM_Route, 0, UINT32_MAX, nullptr);
  }
}

void DeviceRoute::OnRoute(const spa_pod* route) {
  std::int32_t index = 0;
  std::int32_t profileDevice = 0;
  const spa_pod* props = nullptr;
  const int found = spa_pod_parse_object(route, SPA_TYPE_OBJECT_ParamRoute, nullptr, SPA_PARAM_ROUTE_index,
                                         SPA_POD_Int(&index), SPA_PARAM_ROUTE_device, SPA_POD_Int(&profileDevice),
                                         SPA_PARAM_ROUTE_props, SPA_POD_OPT_Pod(&props));
  if (found < 0 || profileDevice != m_ProfileDevice || props == nullptr) {
    return;
  }
  m_Index = index;
  m_Sound = ReadSoundProps(props);
  m_OnChange();
}

void DeviceRoute::Set(const SoundProps& sound) {
  std::array<std::uint8_t, 1024> bytes{};
  spa_pod_builder builder{};
  spa_pod_builder_init(&builder, bytes.data(), bytes.size());
  spa_pod_frame frame{};
  spa_pod_builder_push_object(&builder, &frame, SPA_TYPE_OBJECT_ParamRoute, SPA_PARAM_Route);
  spa_pod_builder_prop(&builder, SPA_PARAM_ROUTE_index, 0);
  spa_pod_builder_int(&builder, m_Index);
  spa_pod_builder_prop(&builder, SPA_PARAM_ROUTE_device, 0);
  spa_pod_builder_int(&builder, m_ProfileDevice);
  spa_pod_builder_prop(&builder, SPA_PARAM_ROUTE_props, 0);
  AddSoundProps(&builder, SPA_PARAM_Route, sound);
  // Kept over the end of the session, as a volume control's change is.
  spa_pod_builder_prop(&builder, SPA_PARAM_ROUTE_save, 0);
  spa_pod_builder_bool(&builder, true);
  const auto* const parameter = static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &frame));
  pw_device_set_param(m_Device, SPA_PARAM_Route, 0, parameter);
}

}  // namespace orvex::pipewire
