// Two nodes, as one that plays and listens would be a loop in the graph.
#include "pipewire/sound_probe.h"

#include <pipewire/keys.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <condition_variable>
#include <mutex>

namespace orvex::integration {
namespace {

using namespace orvex::pipewire;

constexpr char kPlayer[] = "probe-player";
constexpr char kListener[] = "probe-listener";

constexpr std::size_t kChannels = 4;

// A constant level under the impulses tells that a way is open. The two add up at an output.
constexpr float kProgrammePilot = 0.001F;
constexpr float kTestPilot = 0.002F;
constexpr float kPilotTolerance = 1e-5F;

// Each impulse has a height of its own: others may still be in the delay line.
constexpr float kFirstHeight = 0.2F;
constexpr float kHeightStep = 0.01F;
constexpr float kHeightTolerance = 0.001F;

// Twice as long as a change of the delay fades.
constexpr std::uint32_t kSteadyFrames = 960;

}  // namespace

// What a test does on the data thread may take a lock.
class SoundProbe::Player : public SoundProcessor {
public:
  // An impulse of the programme, and one of the test sound that is a step higher.
  void Strike(float height) { m_Height = height; }

  void OnCycle(const Cycle& cycle) override {
    const float height = m_Height.exchange(0.0F);
    for (std::size_t channel = 0; channel < kChannels; ++channel) {
      if (cycle.out[channel] == nullptr) {
        continue;
      }
      const bool isProgramme = channel < 2;
      std::fill_n(cycle.out[channel], cycle.frames, isProgramme ? kProgrammePilot : kTestPilot);
      if (height > 0.0F) {
        cycle.out[channel][isProgramme ? 0 : cycle.frames / 2] += isProgramme ? height : height + kHeightStep;
      }
    }
  }

private:
  std::atomic<float> m_Height{0.0F};  // 0: none
};

class SoundProbe::Listener : public SoundProcessor {
public:
  void OnCycle(const Cycle& cycle) override {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    m_PilotFrames += cycle.frames;
    for (std::size_t channel = 0; channel < kChannels; ++channel) {
      Listen(cycle, channel);
    }
    m_Changed.notify_all();
  }

  bool WaitForPilots() {
    std::unique_lock<std::mutex> lock(m_Mutex);
    m_PilotFrames = 0;
    return m_Changed.wait_for(lock, kPatience, [&] { return m_PilotFrames > kSteadyFrames; });
  }

  // Where an impulse of this height has arrived in each channel; empty: not in each within kPatience.
  std::vector<std::int64_t> WaitForImpulse(float height) {
    std::unique_lock<std::mutex> lock(m_Mutex);
    std::vector<std::int64_t> positions;
    m_Changed.wait_for(lock, kPatience, [&] {
      positions = PositionsOf(height);
      return !positions.empty();
    });
    return positions;
  }

private:
  struct Arrival {
    std::size_t channel;
    float level;
    std::int64_t position;
  };

  void Listen(const Cycle& cycle, std::size_t channel) {
    if (cycle.in[channel] == nullptr) {
      m_PilotFrames = 0;
      return;
    }
    for (std::uint32_t frame = 0; frame < cycle.frames; ++frame) {
      const float level = cycle.in[channel][frame] - kProgrammePilot - kTestPilot;
      if (std::abs(level) > kPilotTolerance) {
        m_PilotFrames = 0;
      }
      if (level > kFirstHeight - kHeightTolerance) {
        m_Arrivals.push_back({channel, level, static_cast<std::int64_t>(cycle.position) + frame});
      }
    }
  }

  std::vector<std::int64_t> PositionsOf(float height) const {
    std::vector<std::int64_t> positions(kChannels);
    std::size_t found = 0;
    for (const Arrival& arrival : m_Arrivals) {
      if (std::abs(arrival.level - height) < kHeightTolerance) {
        positions[arrival.channel] = arrival.position;
        ++found;
      }
    }
    return found == kChannels ? positions : std::vector<std::int64_t>{};
  }

  std::mutex m_Mutex;
  std::condition_variable m_Changed;
  std::uint32_t m_PilotFrames = 0;  // since when both ways have been open to both outputs
  std::vector<Arrival> m_Arrivals;
};

SoundProbe::SoundProbe(TestClient& client, const std::string& reference, const std::string& delayed, int quantum)
    : m_Client(client), m_Player(std::make_unique<Player>()), m_Listener(std::make_unique<Listener>()) {
  const ThreadLoop::Lock lock(m_Client.GetLoop());
  Connection& connection = m_Client.GetConnection();
  const Properties latency{{PW_KEY_NODE_LATENCY, std::to_string(quantum) + "/48000"}};
  m_PlayerNode = std::make_unique<FilterNode>(
      connection, FilterNode::Description{kPlayer, latency, {}, {"out_0", "out_1", "out_2", "out_3"}}, *m_Player);
  m_ListenerNode = std::make_unique<FilterNode>(
      connection, FilterNode::Description{kListener, latency, {"in_0", "in_1", "in_2", "in_3"}}, *m_Listener);
  const std::vector<WantedLink> links{{{kPlayer, {"out_0"}}, {"orvex", {"playback_FL"}}},
                                      {{kPlayer, {"out_1"}}, {"orvex", {"playback_FR"}}},
                                      {{kPlayer, {"out_2"}}, {"orvex-test", {"playback_FL"}}},
                                      {{kPlayer, {"out_3"}}, {"orvex-test", {"playback_FR"}}},
                                      {{reference, {"monitor_FL"}}, {kListener, {"in_0"}}},
                                      {{reference, {"monitor_FR"}}, {kListener, {"in_1"}}},
                                      {{delayed, {"monitor_FL"}}, {kListener, {"in_2"}}},
                                      {{delayed, {"monitor_FR"}}, {kListener, {"in_3"}}},
                                      // All of them follow this one's clock.
                                      {{kPlayer, {"out_0"}}, {"driver", {"playback_FL"}}}};
  m_Links = std::make_unique<LinkKeeper>(connection, links, LinkKeeper::Nodes::kRun, LinkKeeper::Callbacks{});
}

SoundProbe::~SoundProbe() {
  const ThreadLoop::Lock lock(m_Client.GetLoop());
  m_Links.reset();
  m_PlayerNode.reset();
  m_ListenerNode.reset();
}

Offsets SoundProbe::Measure() {
  if (!m_Listener->WaitForPilots()) {
    return {};
  }
  const float height = kFirstHeight + 2.0F * kHeightStep * static_cast<float>(m_Strikes++);
  m_Player->Strike(height);
  Offsets offsets;
  for (const float one : {height, height + kHeightStep}) {
    const std::vector<std::int64_t> positions = m_Listener->WaitForImpulse(one);
    if (positions.empty()) {
      return {};
    }
    offsets.push_back(positions[2] - positions[0]);
    offsets.push_back(positions[3] - positions[1]);
  }
  return offsets;
}

}  // namespace orvex::integration
