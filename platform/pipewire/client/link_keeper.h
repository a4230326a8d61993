// Keeps links between ports that are known by name, however often the nodes come and go.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "pipewire/client/connection.h"
#include "pipewire/client/created_object.h"

namespace orvex::pipewire {

struct PortName {
  std::string node;                // "node.name"
  std::vector<std::string> ports;  // "port.name"; the first that the node has
};

struct WantedLink {
  PortName from;
  PortName to;
};

// Used on the loop's thread, or with the loop locked.
class LinkKeeper : private RegistryListener {
public:
  // What is linked runs always, or only while something else plays or records there; an output that rests is suspended.
  enum class Nodes { kRun, kMayRest };

  struct Callbacks {
    // The links are as complete as the nodes that are there allow.
    std::function<void()> onUpdate = [] {};
    // A link could not be made. It is tried again when one of its ports is another one.
    std::function<void(const std::string& problem)> onProblem = [](const std::string&) {};
  };

  LinkKeeper(Connection& connection, const std::vector<WantedLink>& links, Nodes nodes, Callbacks callbacks);
  ~LinkKeeper() override;
  LinkKeeper(const LinkKeeper&) = delete;
  LinkKeeper& operator=(const LinkKeeper&) = delete;

  // All links from and to this node are there.
  bool IsLinked(const std::string& node) const;

private:
  struct Slot {
    WantedLink wanted;
    std::uint32_t from;  // numbers of the ports that `link` is between, or was when it was refused
    std::uint32_t to;
    std::unique_ptr<CreatedObject> link;
    enum class State { kNone, kMade, kRefused } state;
  };

  void OnAdded(const Object& object) override;
  void OnRemoved(const Object& object) override;
  std::uint32_t FindPort(const PortName& name) const;
  void RequestUpdate();
  void Update();
  void Update(Slot& slot);
  void OnGone(Slot& slot, const std::string& error);

  Connection& m_Connection;
  const Nodes m_Nodes;
  const Callbacks m_Callbacks;
  std::vector<Slot> m_Slots;
  bool m_IsUpdateRequested = false;
  // Calls that the connection holds look here whether this object still lives.
  std::shared_ptr<LinkKeeper*> m_Self = std::make_shared<LinkKeeper*>(this);
};

}  // namespace orvex::pipewire
