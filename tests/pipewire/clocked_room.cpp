// The cards' nodes, and impulses that are looked for in what the cards play.
#include "pipewire/clocked_room.h"

#include <pipewire/pipewire.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <stdexcept>

#include "pipewire/client/delay_node.h"
#include "pipewire/client/pc_config.h"

namespace orvex::integration {
namespace {

using pipewire::ThreadLoop;

constexpr char kReferenceCard[] = "card-reference";
constexpr char kDelayedCard[] = "card-delayed";
constexpr char kMicrophoneCard[] = "card-microphone";
constexpr char kStriker[] = "striker";
// More than a delay in these rooms, and the buffers of the cards.
constexpr std::uint32_t kFramesOfAnImpulse = 48000;

// A resampler spreads an impulse over neighbours and lowers its peak by a third at most.
constexpr float kImpulse = 0.8F;
constexpr int kPeak = INT16_MAX * 4 / 10;
// Of what a resampler plays after the peak.
constexpr double kAfterPeak = 32.0;

void RequireInRoom(bool isReached, const char* what) {
  if (!isReached) {
    throw std::runtime_error(std::string("waited in vain for ") + what);
  }
}

// When the largest sample after `sinceNs` comes to the microphone, between ticks by a parabola through its neighbours.
// Empty: there is no impulse, or its end has not been played yet.
std::optional<double> ArrivalNs(const RoomCard& card, std::int64_t sinceNs) {
  const auto first = static_cast<std::int64_t>(card.TickAt(sinceNs));
  const double now = card.TickAt(MonotonicNs());
  std::int64_t peak = first;
  for (std::int64_t tick = first; static_cast<double>(tick) < now; ++tick) {
    if (card.GetSample(tick) > card.GetSample(peak)) {
      peak = tick;
    }
  }
  if (card.GetSample(peak) < kPeak || now < static_cast<double>(peak) + kAfterPeak) {
    return std::nullopt;
  }
  const double before = card.GetSample(peak - 1);
  const double after = card.GetSample(peak + 1);
  const double bend = before - 2.0 * card.GetSample(peak) + after;
  return card.NsOf(static_cast<double>(peak) + (before - after) / (2.0 * bend)) + card.GetWayMs() * 1e6;
}

}  // namespace

// What a test does on the data thread may take a lock.
class ClockedRoom::Striker : public pipewire::SoundProcessor {
public:
  void OnCycle(const pipewire::Cycle& cycle) override {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    for (float* const out : {cycle.out[0], cycle.out[1]}) {
      if (out != nullptr) {
        std::fill_n(out, cycle.frames, 0.0F);
        out[0] = m_IsDue ? kImpulse : 0.0F;
      }
    }
    m_IsDue = m_IsDue && cycle.out[0] == nullptr;
    m_Frames += cycle.frames;
    m_HasCycled.notify_all();
  }

  // One impulse. Asks `hasArrived` after each cycle; false: the impulse was lost, as where a card begins.
  bool Strike(const std::function<bool()>& hasArrived) {
    std::unique_lock<std::mutex> lock(m_Mutex);
    m_IsDue = true;
    m_Frames = 0;
    bool isHeard = false;
    m_HasCycled.wait_for(lock, kPatience, [&] {
      isHeard = hasArrived();
      return isHeard || m_Frames >= kFramesOfAnImpulse;
    });
    return isHeard;
  }

private:
  std::mutex m_Mutex;
  std::condition_variable m_HasCycled;
  bool m_IsDue = false;
  std::uint32_t m_Frames = 0;  // since the last impulse
};

ClockedRoom::ClockedRoom(const ClockedRoomDesign& design)
    : m_Cards(m_Daemon.GetRoomFile()), m_Striker(std::make_unique<Striker>()) {
  const std::int64_t now = MonotonicNs();
  m_Cards->reference.Begin(design.reference, now);
  m_Cards->delayed.Begin(design.delayed, now);
  m_Cards->microphone.Begin(design.microphone, now);
  pipewire::WritePcConfig(m_Daemon.GetConfigFolder() / "pc.json", {kReferenceCard, kDelayedCard, kMicrophoneCard});
  m_Client = std::make_unique<TestClient>();
  {
    const ThreadLoop::Lock lock(m_Client->GetLoop());
    m_Nodes.push_back(MakeCard(kReferenceCard, "reference", false, 900));
    m_Nodes.push_back(MakeCard(kDelayedCard, "delayed", false, 800));
    m_Nodes.push_back(MakeCard(kMicrophoneCard, "microphone", true, 1900));
  }
  for (const char* name : {kReferenceCard, kDelayedCard, kMicrophoneCard}) {
    RequireInRoom(m_Client->WaitForNode(name), name);
  }
  m_Delay = m_Daemon.Run("delay", ORVEX_DELAY_PROGRAM);
  // The ways from "orvex", from "orvex-test" and to both outputs.
  constexpr std::size_t kDelayLinks = 8;
  RequireInRoom(m_Client->WaitForLinks(kDelayLinks), "the links of orvex-delay");
  if (design.isProgrammePlaying) {
    // For 6 s: cards that have just begun wander against each other.
    constexpr std::size_t kUntilSettled = 100;
    RequireInRoom(MeasureDifferencesMs(kUntilSettled).size() == kUntilSettled, "the programme");
  }
}

void ClockedRoom::MakeStriker() {
  const ThreadLoop::Lock lock(m_Client->GetLoop());
  pipewire::FilterNode::Description description;
  description.name = kStriker;
  description.outputs = {"out_0", "out_1"};
  m_StrikerNode = std::make_unique<pipewire::FilterNode>(m_Client->GetConnection(), description, *m_Striker);
  m_Links = std::make_unique<pipewire::LinkKeeper>(
      m_Client->GetConnection(),
      std::vector<pipewire::WantedLink>{{{kStriker, {"out_0"}}, {pipewire::kProgrammeSink, {"playback_FL"}}},
                                        {{kStriker, {"out_1"}}, {pipewire::kProgrammeSink, {"playback_FR"}}}},
      pipewire::LinkKeeper::Nodes::kRun, pipewire::LinkKeeper::Callbacks{});
}

ClockedRoom::~ClockedRoom() {
  m_Delay->Signal(SIGTERM);
  static_cast<void>(m_Delay->WaitForEnd());
  const ThreadLoop::Lock lock(m_Client->GetLoop());
  m_Links.reset();
  m_StrikerNode.reset();
  m_Nodes.clear();
}

// The daemon opens it as it would open "hw:0".
std::unique_ptr<pipewire::CreatedObject> ClockedRoom::MakeCard(const char* name, const char* card, bool isMicrophone,
                                                               int priority) {
  const pipewire::Properties properties{
      {PW_KEY_FACTORY_NAME, isMicrophone ? "api.alsa.pcm.source" : "api.alsa.pcm.sink"},
      {PW_KEY_NODE_NAME, name},
      {PW_KEY_NODE_DESCRIPTION, name},
      {PW_KEY_MEDIA_CLASS, isMicrophone ? "Audio/Source" : "Audio/Sink"},
      {PW_KEY_OBJECT_LINGER, "false"},
      {PW_KEY_PRIORITY_DRIVER, std::to_string(priority)},
      {"api.alsa.path", "orvexcard:" + m_Daemon.GetRoomFile().string() + "," + card},
      {"audio.format", "S16LE"},
      {"audio.rate", std::to_string(RoomCard::kRateHz)},
      {"audio.channels", "2"},
      {"audio.position", "FL,FR"},
      {"clock.name", name}};
  return std::make_unique<pipewire::CreatedObject>(m_Client->GetConnection(), "adapter", PW_TYPE_INTERFACE_Node,
                                                   properties, [](const std::string&) {});
}

std::vector<double> ClockedRoom::MeasureDifferencesMs(std::size_t impulses) {
  if (!m_Links) {
    MakeStriker();
  }
  std::vector<double> differencesMs;
  const std::int64_t endNs = MonotonicNs() + std::chrono::nanoseconds(kPatience).count();
  while (differencesMs.size() < impulses && MonotonicNs() < endNs) {
    const std::int64_t sinceNs = MonotonicNs();
    std::optional<double> reference;
    std::optional<double> delayed;
    const bool haveBothArrived = m_Striker->Strike([&] {
      reference = ArrivalNs(m_Cards->reference, sinceNs);
      delayed = ArrivalNs(m_Cards->delayed, sinceNs);
      return reference && delayed;
    });
    if (haveBothArrived) {
      differencesMs.push_back((*delayed - *reference) * 1e-6);
    }
  }
  return differencesMs;
}

}  // namespace orvex::integration
