// Asks a factory of the daemon for an object, and hears of its end.
#include "pipewire/client/created_object.h"

#include <pipewire/pipewire.h>

#include <cerrno>
#include <utility>

#include "pipewire/client/pipewire_error.h"

namespace orvex::pipewire {

struct CreatedObject::State {
  std::function<void(const std::string&)> onGone;
  pw_proxy* proxy = nullptr;
  spa_hook hook{};

  void OnGone(const std::string& error) {
    if (const auto tell = std::exchange(onGone, nullptr)) {
      tell(error);
    }
  }
};

CreatedObject::CreatedObject(const Connection& connection, const char* factory, const char* type,
                             const Properties& properties, std::function<void(const std::string&)> onGone)
    : m_State(std::make_unique<State>(State{std::move(onGone)})) {
  std::vector<spa_dict_item> items;
  for (const auto& [key, value] : properties) {
    items.push_back({key.c_str(), value.c_str()});
  }
  const spa_dict dict{0, static_cast<std::uint32_t>(items.size()), items.data()};
  // The versions of a node's and of a link's interface are the same.
  static_assert(PW_VERSION_NODE == PW_VERSION_LINK);
  m_State->proxy =
      static_cast<pw_proxy*>(pw_core_create_object(connection.GetCore(), factory, type, PW_VERSION_NODE, &dict, 0));
  if (m_State->proxy == nullptr) {
    throw PipeWireError(std::string("factory ") + factory, errno);
  }
  static const pw_proxy_events kEvents = [] {
    pw_proxy_events events{};
    events.version = PW_VERSION_PROXY_EVENTS;
    events.removed = [](void* self) { static_cast<State*>(self)->OnGone(""); };
    events.error = [](void* self, int /*sequence*/, int /*result*/, const char* message) {
      static_cast<State*>(self)->OnGone(message);
    };
    return events;
  }();
  pw_proxy_add_listener(m_State->proxy, &m_State->hook, &kEvents, m_State.get());
}

CreatedObject::~CreatedObject() {
  spa_hook_remove(&m_State->hook);
  pw_proxy_destroy(m_State->proxy);
}

std::unique_ptr<CreatedObject> CreateNullSink(const Connection& connection, Properties properties,
                                              std::function<void(const std::string&)> onGone) {
  properties.insert({{PW_KEY_FACTORY_NAME, "support.null-audio-sink"}, {PW_KEY_OBJECT_LINGER, "false"}});
  return std::make_unique<CreatedObject>(connection, "adapter", PW_TYPE_INTERFACE_Node, properties, std::move(onGone));
}

}  // namespace orvex::pipewire
