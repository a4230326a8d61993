// A sound card without hardware: a device whose route to its one output has mute and volume.
#pragma once

#include <spa/monitor/device.h>

#include <cstdint>
#include <memory>

#include "pipewire/client/created_object.h"
#include "pipewire/client/sound_props.h"
#include "pipewire/test_client.h"

struct pw_proxy;

namespace orvex::integration {

// In the daemon as the device "card" with the output "card-output".
class Card {
public:
  static constexpr char kOutput[] = "card-output";

  // Returns when both are there.
  explicit Card(TestClient& client);
  ~Card();
  Card(const Card&) = delete;
  Card& operator=(const Card&) = delete;

  pipewire::SoundProps GetSound();
  // As with the card's own control.
  void SetSound(const pipewire::SoundProps& sound);

private:
  static int AddListener(void* self, spa_hook* listener, const spa_device_events* events, void* data);
  static int Sync(void* self, int sequence);
  static int EnumParams(void* self, int sequence, std::uint32_t id, std::uint32_t start, std::uint32_t count,
                        const spa_pod* filter);
  static int SetParam(void* self, std::uint32_t id, std::uint32_t flags, const spa_pod* parameter);
  void TellInfo();

  TestClient& m_Client;
  // With the loop locked.
  spa_device m_Device{};
  spa_hook_list m_Hooks{};
  std::uint32_t m_Serial = 0;  // even or odd: changes tell that the route is another one
  pipewire::SoundProps m_Sound{false, {1.0F, 1.0F}};
  pw_proxy* m_Proxy = nullptr;
  std::unique_ptr<pipewire::CreatedObject> m_Output;
};

}  // namespace orvex::integration
