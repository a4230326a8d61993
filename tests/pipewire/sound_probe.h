// Plays impulses to the programme's and the test sound's sink, and hears when they arrive at the two outputs, to the
// sample.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "pipewire/client/filter_node.h"
#include "pipewire/client/link_keeper.h"
#include "pipewire/test_client.h"

namespace orvex::integration {

// How much later the delayed output is than the reference output, in frames of the graph's clock: of the programme's
// left and right channel and of the test sound at the left and the right of the outputs' channels.
using Offsets = std::vector<std::int64_t>;

class SoundProbe {
public:
  // `quantum`: frames of a cycle that the probe asks for. The default leaves each cycle 85 ms, so that none is lost on
  // a busy machine.
  SoundProbe(TestClient& client, const std::string& reference, const std::string& delayed, int quantum = 4096);
  ~SoundProbe();
  SoundProbe(const SoundProbe&) = delete;
  SoundProbe& operator=(const SoundProbe&) = delete;

  // Waits until both ways lead to both outputs, for longer than a change of the delay takes, and sends one impulse of
  // the programme and one of the test sound. Empty: not all of them have arrived within kPatience.
  Offsets Measure();

private:
  class Player;
  class Listener;

  TestClient& m_Client;
  int m_Strikes = 0;
  std::unique_ptr<Player> m_Player;
  std::unique_ptr<Listener> m_Listener;
  std::unique_ptr<pipewire::FilterNode> m_PlayerNode;
  std::unique_ptr<pipewire::FilterNode> m_ListenerNode;
  std::unique_ptr<pipewire::LinkKeeper> m_Links;
};

}  // namespace orvex::integration
