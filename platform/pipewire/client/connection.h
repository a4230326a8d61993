// A connection to the PipeWire daemon, and what the daemon has: nodes, ports, links, devices and the rest.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct pw_core;
struct pw_loop;
struct pw_registry;
struct spa_dict;

namespace orvex::pipewire {

using Properties = std::map<std::string, std::string>;

Properties ToProperties(const spa_dict* dict);

// An object as the daemon's registry announces it, with few of its properties; NodeProxy has all of a node's.
struct Object {
  enum class Kind { kNode, kPort, kLink, kDevice, kProfiler, kOther };

  std::uint32_t id = 0;
  Kind kind = Kind::kOther;
  Properties properties;

  // Empty when there is none.
  std::string Get(const std::string& key) const;
  // As a number, such as "node.id" of a port; SPA_ID_INVALID when there is none.
  std::uint32_t GetId(const std::string& key) const;
};

// Told on the loop's thread.
class RegistryListener {
public:
  virtual ~RegistryListener() = default;
  virtual void OnAdded(const Object& object) = 0;
  // It is not among GetObjects() any more.
  virtual void OnRemoved(const Object& object) = 0;
};

// Used on the loop's thread, or with the loop locked. What is made from the connection must go before it.
class Connection {
public:
  // `onLost`: called once, when the daemon is gone. Nothing can be asked of it any more. Throws PipeWireError when
  // there is no daemon.
  Connection(pw_loop* loop, std::function<void()> onLost);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  pw_core* GetCore() const;
  pw_registry* GetRegistry() const;

  // What is there, by number. Complete once the first Sync() is done.
  const std::map<std::uint32_t, Object>& GetObjects() const;
  // The node with this "node.name"; of several, the one with the lowest number. nullptr: there is none.
  const Object* FindNode(const std::string& name) const;

  // `listener` is told of what comes and goes from now on; it is not told of what is there already.
  void AddListener(RegistryListener* listener);
  void RemoveListener(RegistryListener* listener);

  // `done` is called when the daemon has worked off what was asked so far and its answers have been taken.
  void Sync(std::function<void()> done);

private:
  struct State;
  std::unique_ptr<State> m_State;
};

}  // namespace orvex::pipewire
