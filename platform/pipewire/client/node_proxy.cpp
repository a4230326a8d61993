// Binds a node and subscribes to its parameters.
#include "pipewire/client/node_proxy.h"

#include <pipewire/pipewire.h>

#include <cerrno>
#include <utility>

#include "pipewire/client/pipewire_error.h"

namespace orvex::pipewire {

struct NodeProxy::State {
  std::uint32_t id;
  Callbacks callbacks;
  pw_node* node = nullptr;
  spa_hook hook{};

  void OnInfo(const pw_node_info* info) const {
    if ((info->change_mask & PW_NODE_CHANGE_MASK_PROPS) != 0) {
      callbacks.onProperties(ToProperties(info->props));
    }
    if ((info->change_mask & PW_NODE_CHANGE_MASK_STATE) != 0) {
      callbacks.onState(pw_node_state_as_string(info->state));
    }
  }
};

NodeProxy::NodeProxy(const Connection& connection, std::uint32_t id, std::vector<std::uint32_t> parameters,
                     Callbacks callbacks)
    : m_State(std::make_unique<State>(State{id, std::move(callbacks)})) {
  m_State->node =
      static_cast<pw_node*>(pw_registry_bind(connection.GetRegistry(), id, PW_TYPE_INTERFACE_Node, PW_VERSION_NODE, 0));
  if (m_State->node == nullptr) {
    throw PipeWireError("node " + std::to_string(id), errno);
  }
  static const pw_node_events kEvents = [] {
    pw_node_events events{};
    events.version = PW_VERSION_NODE_EVENTS;
    events.info = [](void* self, const pw_node_info* info) { static_cast<State*>(self)->OnInfo(info); };
    events.param = [](void* self, int /*sequence*/, std::uint32_t parameter, std::uint32_t /*index*/,
                      std::uint32_t /*next*/,
                      const spa_pod* value) { static_cast<State*>(self)->callbacks.onParameter(parameter, value); };
    return events;
  }();
  pw_node_add_listener(m_State->node, &m_State->hook, &kEvents, m_State.get());
  if (!parameters.empty()) {
    pw_node_subscribe_params(m_State->node, parameters.data(), static_cast<std::uint32_t>(parameters.size()));
  }
}

NodeProxy::~NodeProxy() {
  spa_hook_remove(&m_State->hook);
  pw_proxy_destroy(reinterpret_cast<pw_proxy*>(m_State->node));
}

std::uint32_t NodeProxy::GetId() const {
  return m_State->id;
}

void NodeProxy::Set(std::uint32_t parameter, const spa_pod* value) {
  pw_node_set_param(m_State->node, parameter, 0, value);
}

}  // namespace orvex::pipewire
