// Compares the wanted links with the ports that are there, whenever these change.
#include "pipewire/client/link_keeper.h"

#include <pipewire/pipewire.h>

#include <algorithm>
#include <utility>

namespace orvex::pipewire {

LinkKeeper::LinkKeeper(Connection& connection, const std::vector<WantedLink>& links, Nodes nodes, Callbacks callbacks)
    : m_Connection(connection), m_Nodes(nodes), m_Callbacks(std::move(callbacks)) {
  for (const WantedLink& link : links) {
    m_Slots.push_back({link, SPA_ID_INVALID, SPA_ID_INVALID, nullptr, Slot::State::kNone});
  }
  m_Connection.AddListener(this);
  RequestUpdate();
}

LinkKeeper::~LinkKeeper() {
  m_Connection.RemoveListener(this);
  *m_Self = nullptr;
}

bool LinkKeeper::IsLinked(const std::string& node) const {
  return std::all_of(m_Slots.begin(), m_Slots.end(), [&](const Slot& slot) {
    const bool isOfNode = slot.wanted.from.node == node || slot.wanted.to.node == node;
    return !isOfNode || slot.state == Slot::State::kMade;
  });
}

void LinkKeeper::OnAdded(const Object& object) {
  if (object.kind == Object::Kind::kPort) {
    RequestUpdate();
  }
}

void LinkKeeper::OnRemoved(const Object& object) {
  if (object.kind == Object::Kind::kPort || object.kind == Object::Kind::kNode) {
    RequestUpdate();
  }
}

// The daemon tells of a node's end in several messages; between them there are ports that cannot be linked any more.
void LinkKeeper::RequestUpdate() {
  if (std::exchange(m_IsUpdateRequested, true)) {
    return;
  }
  m_Connection.Sync([self = m_Self] {
    if (*self != nullptr) {
      (*self)->m_IsUpdateRequested = false;
      (*self)->Update();
    }
  });
}

void LinkKeeper::Update() {
  for (Slot& slot : m_Slots) {
    Update(slot);
  }
  m_Callbacks.onUpdate();
}

void LinkKeeper::Update(Slot& slot) {
  const std::uint32_t from = FindPort(slot.wanted.from);
  const std::uint32_t to = FindPort(slot.wanted.to);
  if (slot.state != Slot::State::kNone && from == slot.from && to == slot.to) {
    return;
  }
  slot = {slot.wanted, from, to, nullptr, Slot::State::kNone};
  if (from == SPA_ID_INVALID || to == SPA_ID_INVALID) {
    return;
  }
  slot.state = Slot::State::kMade;
  slot.link =
      std::make_unique<CreatedObject>(m_Connection, "link-factory", PW_TYPE_INTERFACE_Link,
                                      Properties{{PW_KEY_LINK_OUTPUT_PORT, std::to_string(from)},
                                                 {PW_KEY_LINK_INPUT_PORT, std::to_string(to)},
                                                 {PW_KEY_LINK_PASSIVE, m_Nodes == Nodes::kMayRest ? "true" : "false"},
                                                 {PW_KEY_OBJECT_LINGER, "false"}},
                                      [this, &slot](const std::string& error) { OnGone(slot, error); });
}

void LinkKeeper::OnGone(Slot& slot, const std::string& error) {
  slot.state = error.empty() ? Slot::State::kNone : Slot::State::kRefused;
  if (slot.state == Slot::State::kRefused) {
    m_Callbacks.onProblem("link to " + slot.wanted.to.node + ": " + error);
  }
  RequestUpdate();
}

std::uint32_t LinkKeeper::FindPort(const PortName& name) const {
  const Object* node = m_Connection.FindNode(name.node);
  if (node == nullptr) {
    return SPA_ID_INVALID;
  }
  std::size_t best = name.ports.size();
  std::uint32_t port = SPA_ID_INVALID;
  for (const auto& [id, object] : m_Connection.GetObjects()) {
    if (object.kind == Object::Kind::kPort && object.GetId(PW_KEY_NODE_ID) == node->id) {
      const auto found = std::find(name.ports.begin(), name.ports.end(), object.Get(PW_KEY_PORT_NAME));
      const auto place = static_cast<std::size_t>(found - name.ports.begin());
      port = place < best ? id : port;
      best = std::min(place, best);
    }
  }
  return port;
}

}  // namespace orvex::pipewire
