// The core's and the registry's events, turned into objects and calls.
#include "pipewire/client/connection.h"

#include <pipewire/extensions/profiler.h>
#include <pipewire/pipewire.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <utility>

#include "pipewire/client/pipewire_error.h"

namespace orvex::pipewire {
namespace {

Object::Kind KindOf(const char* type) {
  static const std::map<std::string, Object::Kind> kKinds{{PW_TYPE_INTERFACE_Node, Object::Kind::kNode},
                                                          {PW_TYPE_INTERFACE_Port, Object::Kind::kPort},
                                                          {PW_TYPE_INTERFACE_Link, Object::Kind::kLink},
                                                          {PW_TYPE_INTERFACE_Device, Object::Kind::kDevice},
                                                          {PW_TYPE_INTERFACE_Profiler, Object::Kind::kProfiler}};
  const auto found = kKinds.find(type);
  return found == kKinds.end() ? Object::Kind::kOther : found->second;
}

}  // namespace

Properties ToProperties(const spa_dict* dict) {
  Properties properties;
  for (std::uint32_t i = 0; dict != nullptr && i < dict->n_items; ++i) {
    properties[dict->items[i].key] = dict->items[i].value == nullptr ? "" : dict->items[i].value;
  }
  return properties;
}

std::string Object::Get(const std::string& key) const {
  const auto found = properties.find(key);
  return found == properties.end() ? "" : found->second;
}

std::uint32_t Object::GetId(const std::string& key) const {
  const std::string text = Get(key);
  std::uint32_t number = SPA_ID_INVALID;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

struct Connection::State {
  std::function<void()> onLost;
  pw_context* context = nullptr;
  pw_core* core = nullptr;
  pw_registry* registry = nullptr;
  spa_hook coreHook{};
  spa_hook registryHook{};
  std::map<std::uint32_t, Object> objects;
  std::vector<RegistryListener*> listeners;
  std::map<int, std::function<void()>> syncs;  // by sequence number
  bool isLost = false;

  ~State() {
    if (registry != nullptr) {
      spa_hook_remove(&registryHook);
      pw_proxy_destroy(reinterpret_cast<pw_proxy*>(registry));
    }
    if (core != nullptr) {
      spa_hook_remove(&coreHook);
      pw_core_disconnect(core);
    }
    if (context != nullptr) {
      pw_context_destroy(context);
    }
  }

  void OnAdded(std::uint32_t id, const char* type, const spa_dict* properties) {
    const Object& object = objects[id] = Object{id, KindOf(type), ToProperties(properties)};
    for (RegistryListener* listener : std::vector<RegistryListener*>(listeners)) {
      listener->OnAdded(object);
    }
  }
  void OnRemoved(std::uint32_t id) {
    const auto node = objects.extract(id);
    if (!node) {
      return;
    }
    for (RegistryListener* listener : std::vector<RegistryListener*>(listeners)) {
      listener->OnRemoved(node.mapped());
    }
  }
  void OnDone(int sequence) {
    if (const auto node = syncs.extract(sequence)) {
      node.mapped()();
    }
  }
  void OnError(std::uint32_t id, int result) {
    // Errors about other objects are told to their proxies.
    if (id == PW_ID_CORE && result == -EPIPE && !isLost) {
      isLost = true;
      onLost();
    }
  }
};

Connection::Connection(pw_loop* loop, std::function<void()> onLost) : m_State(std::make_unique<State>()) {
  State& state = *m_State;
  state.onLost = std::move(onLost);
  // Real-time priority for the thread that works off the cycles, where the person may have it. Later versions of
  // PipeWire have it in their usual configuration.
  state.context = pw_context_new(loop, pw_properties_new(PW_KEY_CONFIG_NAME, "client-rt.conf", nullptr), 0);
  if (state.context == nullptr) {
    state.context = pw_context_new(loop, nullptr, 0);
  }
  if (state.context == nullptr) {
    throw PipeWireError("no context", errno);
  }
  state.core = pw_context_connect(state.context, nullptr, 0);
  if (state.core == nullptr) {
    throw PipeWireError("no connection to the daemon", errno);
  }
  static const pw_core_events kCoreEvents = [] {
    pw_core_events events{};
    events.version = PW_VERSION_CORE_EVENTS;
    events.done = [](void* self, std::uint32_t /*id*/, int sequence) { static_cast<State*>(self)->OnDone(sequence); };
    events.error = [](void* self, std::uint32_t id, int /*sequence*/, int result, const char* /*message*/) {
      static_cast<State*>(self)->OnError(id, result);
    };
    return events;
  }();
  pw_core_add_listener(state.core, &state.coreHook, &kCoreEvents, &state);
  state.registry = pw_core_get_registry(state.core, PW_VERSION_REGISTRY, 0);
  if (state.registry == nullptr) {
    throw PipeWireError("no registry", errno);
  }
  static const pw_registry_events kRegistryEvents = [] {
    pw_registry_events events{};
    events.version = PW_VERSION_REGISTRY_EVENTS;
    events.global = [](void* self, std::uint32_t id, std::uint32_t /*permissions*/, const char* type,
                       std::uint32_t /*version*/,
                       const spa_dict* properties) { static_cast<State*>(self)->OnAdded(id, type, properties); };
    events.global_remove = [](void* self, std::uint32_t id) { static_cast<State*>(self)->OnRemoved(id); };
    return events;
  }();
  pw_registry_add_listener(state.registry, &state.registryHook, &kRegistryEvents, &state);
}

Connection::~Connection() = default;

pw_core* Connection::GetCore() const {
  return m_State->core;
}

pw_registry* Connection::GetRegistry() const {
  return m_State->registry;
}

const std::map<std::uint32_t, Object>& Connection::GetObjects() const {
  return m_State->objects;
}

const Object* Connection::FindNode(const std::string& name) const {
  for (const auto& [id, object] : m_State->objects) {
    if (object.kind == Object::Kind::kNode && object.Get(PW_KEY_NODE_NAME) == name) {
      return &object;
    }
  }
  return nullptr;
}

void Connection::AddListener(RegistryListener* listener) {
  m_State->listeners.push_back(listener);
}

void Connection::RemoveListener(RegistryListener* listener) {
  auto& listeners = m_State->listeners;
  listeners.erase(std::remove(listeners.begin(), listeners.end(), listener), listeners.end());
}

void Connection::Sync(std::function<void()> done) {
  m_State->syncs[pw_core_sync(m_State->core, PW_ID_CORE, 0)] = std::move(done);
}

}  // namespace orvex::pipewire
