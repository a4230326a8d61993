// A card's route to one of its outputs: the active port with its mute and its volume.
#pragma once

#include <pipewire/device.h>

#include <cstdint>
#include <functional>
#include <optional>

#include "pipewire/client/connection.h"
#include "pipewire/client/sound_props.h"

namespace orvex::pipewire {

// Where an output's route is.
struct RoutePlace {
  std::uint32_t device;        // number of the card among PipeWire's objects
  std::int32_t profileDevice;  // of the output among those of the card
};

// Used with the loop locked.
class DeviceRoute {
public:
  // `onChange`: called on the loop's thread when what GetSound() answers may have changed. Throws PipeWireError.
  DeviceRoute(const Connection& connection, RoutePlace place, std::function<void()> onChange);
  ~DeviceRoute();
  DeviceRoute(const DeviceRoute&) = delete;
  DeviceRoute& operator=(const DeviceRoute&) = delete;

  // Empty: the card has not told of a route to this output.
  const std::optional<SoundProps>& GetSound() const { return m_Sound; }
  // To be called when there is a route.
  void Set(const SoundProps& sound);

private:
  void OnInfo(const pw_device_info& info);
  void OnRoute(const spa_pod* route);

  const std::int32_t m_ProfileDevice;
  const std::function<void()> m_OnChange;
  pw_device* m_Device;
  spa_hook m_Hook{};
  std::int32_t m_Index = 0;  // of the route among those of the card
  std::optional<SoundProps> m_Sound;
};

}  // namespace orvex::pipewire
