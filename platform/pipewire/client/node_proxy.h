// A node of the daemon, to read its properties and parameters, to be told of their changes, and to set them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "pipewire/client/connection.h"

struct spa_pod;

namespace orvex::pipewire {

// Used on the loop's thread, or with the loop locked. Callbacks come on the loop's thread.
class NodeProxy {
public:
  struct Callbacks {
    // All properties, at first and after each change.
    std::function<void(const Properties&)> onProperties = [](const Properties&) {};
    // "running", "idle", "suspended" and the like, at first and after each change.
    std::function<void(const std::string&)> onState = [](const std::string&) {};
    // A value of the parameter, at first and after each change.
    std::function<void(std::uint32_t parameter, const spa_pod* value)> onParameter = [](std::uint32_t, const spa_pod*) {
    };
  };

  // `parameters`: those that are reported, such as SPA_PARAM_Props. Throws PipeWireError.
  NodeProxy(const Connection& connection, std::uint32_t id, std::vector<std::uint32_t> parameters, Callbacks callbacks);
  ~NodeProxy();
  NodeProxy(const NodeProxy&) = delete;
  NodeProxy& operator=(const NodeProxy&) = delete;

  std::uint32_t GetId() const;
  void Set(std::uint32_t parameter, const spa_pod* value);

private:
  struct State;
  std::unique_ptr<State> m_State;
};

}  // namespace orvex::pipewire
