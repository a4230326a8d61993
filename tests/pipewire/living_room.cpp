// The room is a filter of this process between the monitors of the outputs and a source without hardware.
#include "pipewire/living_room.h"

#include <pipewire/keys.h>
#include <signal.h>

#include <algorithm>
#include <stdexcept>

#include "pipewire/client/delay_node.h"
#include "pipewire/client/pc_config.h"

namespace orvex::integration {
namespace {

using pipewire::ThreadLoop;

constexpr char kReference[] = "television";
constexpr char kDelayed[] = "soundbar";
constexpr char kMicrophone[] = "microphone";
constexpr char kRoom[] = "room";

void Require(bool isReached, const char* what) {
  if (!isReached) {
    throw std::runtime_error(std::string("waited in vain for ") + what);
  }
}

bool IsOf(const std::string& link, const std::string& node) {
  return link.rfind(node + ":", 0) == 0 || link.find(" " + node + ":") != std::string::npos;
}

}  // namespace

LivingRoom::LivingRoom(const RoomWays& ways) : m_Ways(ways) {
  pipewire::WritePcConfig(m_Daemon.GetConfigFolder() / "pc.json", {kReference, kDelayed, kMicrophone});
  m_Client = std::make_unique<TestClient>();
  Require(m_Client->WaitForNode(kReference) && m_Client->WaitForNode(kDelayed), "the outputs");
  Repair();
  const ThreadLoop::Lock lock(m_Client->GetLoop());
  m_Control =
      std::make_unique<pipewire::DelayControl>(m_Client->GetConnection(), [this] { m_Client->GetLoop().Notify(); });
}

LivingRoom::~LivingRoom() {
  StopDelay();
  Leave();
}

void LivingRoom::Leave() {
  if (m_Client) {
    const ThreadLoop::Lock lock(m_Client->GetLoop());
    m_Control.reset();
    m_Links.reset();
    m_Room.reset();
    m_Microphone.reset();
  }
  m_Client.reset();
}

void LivingRoom::SetDelay(double delayMs) {
  GetDelay();
  {
    const ThreadLoop::Lock lock(m_Client->GetLoop());
    m_Control->Set(delayMs);
  }
  Require(m_Client->WaitUntil([&] { return m_Control->GetMs() == delayMs; }), "the delay");
}

double LivingRoom::GetDelay() {
  Require(m_Client->Sync() && m_Client->WaitUntil([&] { return m_Control->GetMs().has_value(); }), "orvex-delay");
  const ThreadLoop::Lock lock(m_Client->GetLoop());
  return *m_Control->GetMs();
}

void LivingRoom::RemoveReference() {
  RemoveOutput(kReference);
}

void LivingRoom::RemoveDelayed() {
  RemoveOutput(kDelayed);
}

void LivingRoom::RemoveOutput(const char* name) {
  m_Client->RemoveOutput(name);
  Require(m_Client->WaitForNoNode(name), "the end of an output");
}

void LivingRoom::RemoveMicrophone() {
  {
    const ThreadLoop::Lock lock(m_Client->GetLoop());
    m_Microphone.reset();
  }
  Require(m_Client->WaitForNoNode(kMicrophone), "the end of the microphone");
}

void LivingRoom::StopDelay() {
  if (m_Delay) {
    m_Delay->Signal(SIGTERM);
    static_cast<void>(m_Delay->WaitForEnd());
    m_Delay.reset();
  }
  if (m_Client) {
    Require(m_Client->WaitForNoNode(pipewire::kDelayNode), "the end of orvex-delay");
  }
}

void LivingRoom::StopDaemon() {
  Leave();
  m_Daemon.Stop();
}

void LivingRoom::Repair() {
  bool hasReference = false;
  {
    const ThreadLoop::Lock lock(m_Client->GetLoop());
    hasReference = m_Client->GetConnection().FindNode(kReference) != nullptr;
    if (!m_Microphone) {
      AddMicrophone();
    }
    if (!m_Room) {
      Enter();
    }
  }
  if (!hasReference) {
    m_Client->AddOutput(kReference);
  }
  if (!m_Delay) {
    m_Delay = m_Daemon.Run("delay", ORVEX_DELAY_PROGRAM);
  }
  // To and from orvex-delay, and those of the room.
  constexpr std::ptrdiff_t kDelayLinks = 8;
  constexpr std::ptrdiff_t kRoomLinks = 4;
  Require(m_Client->WaitUntil([&] {
    const auto links = m_Client->GetLinks();
    const auto count = [&](const char* node) {
      return std::count_if(links.begin(), links.end(), [&](const auto& link) { return IsOf(link, node); });
    };
    return count(pipewire::kDelayNode) == kDelayLinks && count(kRoom) == kRoomLinks;
  }),
          "the links");
}

void LivingRoom::AddMicrophone() {
  m_Microphone = pipewire::CreateNullSink(m_Client->GetConnection(),
                                          {{PW_KEY_NODE_NAME, kMicrophone},
                                           {PW_KEY_NODE_DESCRIPTION, "Microphone"},
                                           {PW_KEY_MEDIA_CLASS, "Audio/Source/Virtual"},
                                           {"audio.position", "MONO"},
                                           {"audio.rate", std::to_string(m_Ways.microphoneHz)}},
                                          [](const std::string&) {});
}

void LivingRoom::Enter() {
  pipewire::FilterNode::Description description;
  description.name = kRoom;
  description.inputs = {"reference", "delayed"};
  description.outputs = {"heard"};
  m_Room = std::make_unique<pipewire::FilterNode>(m_Client->GetConnection(), description, m_Sound);
  m_Links = std::make_unique<pipewire::LinkKeeper>(
      m_Client->GetConnection(),
      std::vector<pipewire::WantedLink>{{{kReference, {"monitor_FL"}}, {kRoom, {"reference"}}},
                                        {{kDelayed, {"monitor_FL"}}, {kRoom, {"delayed"}}},
                                        {{kRoom, {"heard"}}, {kMicrophone, {"input_MONO"}}},
                                        // It gives the clock where it is part of the graph.
                                        {{kRoom, {"heard"}}, {"driver", {"playback_FL"}}}},
      m_Ways.isProgrammePlaying ? pipewire::LinkKeeper::Nodes::kRun : pipewire::LinkKeeper::Nodes::kMayRest,
      pipewire::LinkKeeper::Callbacks{});
}

}  // namespace orvex::integration
