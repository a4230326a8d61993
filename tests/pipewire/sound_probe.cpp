// Two nodes, as one that plays and listens would be a loop in the graph.
#include "pipewire/sound_probe.h"

#include <algorithm>
#include <cmath>

namespace orvex::integration {
namespace {

using namespace orvex::pipewire;

constexpr char kPlayer[] = "probe-player";
constexpr char kListener[] = "probe-listener";

// A constant level under the impulses tells that a way is open. The two add up at an output.
constexpr float kProgrammePilot = 0.001F;
constexpr float kTestPilot = 0.002F;
constexpr float kPilotTolerance = 1e-5F;
constexpr float kProgrammeImpulse = 0.5F;
constexpr float kTestImpulse = 0.25F;
constexpr float kImpulseTolerance = 0.1F;

struct Arrival {
  std::size_t channel;
  float level;
  std::int64_t position;
};

}  // namespace

class SoundProbe::Player : public SoundProcessor {
public:
  void Strike() { m_IsWanted = true; }

  void OnCycle(const Cycle& cycle) override {
    const bool isNow = m_IsWanted.exchange(false);
    for (std::size_t channel = 0; channel < 4; ++channel) {
      const bool isProgramme = channel < 2;
      if (cycle.out[channel] != nullptr) {
        std::fill_n(cycle.out[channel], cycle.frames, isProgramme ? kProgrammePilot : kTestPilot);
        cycle.out[channel][isProgramme ? 0 : cycle.frames / 2] +=
            isNow ? (isProgramme ? kProgrammeImpulse : kTestImpulse) : 0.0F;
      }
    }
  }

private:
  std::atomic<bool> m_IsWanted{false};
};

class SoundProbe::Listener : public SoundProcessor {
public:
  // A test has time for locks.
  void OnCycle(const Cycle& cycle) override {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    m_HasPilots = true;
    for (std::size_t channel = 0; channel < 4; ++channel) {
      Listen(cycle, channel);
    }
    m_Changed.notify_all();
  }

  bool WaitForPilots() {
    std::unique_lock<std::mutex> lock(m_Mutex);
    m_HasPilots = false;
    return m_Changed.wait_for(lock, kPatience, [&] { return m_HasPilots; });
  }
  void Forget() {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    m_Arrivals.clear();
  }
  std::vector<Arrival> WaitForArrivals(std::size_t count) {
    std::unique_lock<std::mutex> lock(m_Mutex);
    m_Changed.wait_for(lock, kPatience, [&] { return m_Arrivals.size() >= count; });
    return m_Arrivals;
  }

private:
  void Listen(const Cycle& cycle, std::size_t channel) {
    if (cycle.in[channel] == nullptr) {
      m_HasPilots = false;
      return;
    }
    for (std::uint32_t frame = 0; frame < cycle.frames; ++frame) {
      const float level = cycle.in[channel][frame];
      if (std::abs(level - kProgrammePilot - kTestPilot) > kPilotTolerance) {
        m_HasPilots = false;
      }
      if (level > kImpulseTolerance) {
        m_Arrivals.push_back({channel, level, static_cast<std::int64_t>(cycle.position) + frame});
      }
    }
  }

  std::mutex m_Mutex;
  std::condition_variable m_Changed;
  bool m_HasPilots = false;
  std::vector<Arrival> m_Arrivals;
};

SoundProbe::SoundProbe(TestClient& client, const std::string& reference, const std::string& delayed)
    : m_Client(client), m_Player(std::make_unique<Player>()), m_Listener(std::make_unique<Listener>()) {
  const ThreadLoop::Lock lock(m_Client.GetLoop());
  Connection& connection = m_Client.GetConnection();
  m_PlayerNode = std::make_unique<FilterNode>(
      connection, FilterNode::Description{kPlayer, {}, {}, {"out_0", "out_1", "out_2", "out_3"}}, *m_Player);
  m_ListenerNode = std::make_unique<FilterNode>(
      connection, FilterNode::Description{kListener, {}, {"in_0", "in_1", "in_2", "in_3"}}, *m_Listener);
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
  m_Links = std::make_unique<LinkKeeper>(connection, links, LinkKeeper::Callbacks{});
}

SoundProbe::~SoundProbe() {
  const ThreadLoop::Lock lock(m_Client.GetLoop());
  m_Links.reset();
  m_PlayerNode.reset();
  m_ListenerNode.reset();
}

bool SoundProbe::WaitForSound() {
  return m_Listener->WaitForPilots();
}

Offsets SoundProbe::Measure() {
  m_Listener->Forget();
  m_Player->Strike();
  const std::vector<Arrival> arrivals = m_Listener->WaitForArrivals(8);
  Offsets offsets;
  for (const float level : {kProgrammeImpulse, kTestImpulse}) {
    std::array<std::int64_t, 4> positions{};
    for (const Arrival& arrival : arrivals) {
      if (std::abs(arrival.level - level) < kImpulseTolerance) {
        positions[arrival.channel] = arrival.position;
      }
    }
    offsets.push_back(positions[2] - positions[0]);
    offsets.push_back(positions[3] - positions[1]);
  }
  return arrivals.size() == 8 ? offsets : Offsets{};
}

}  // namespace orvex::integration
