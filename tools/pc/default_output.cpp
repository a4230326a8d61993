// WirePlumber and its like keep the choice in the metadata "default".
#include "pc/default_output.h"

#include <pipewire/extensions/metadata.h>
#include <pipewire/pipewire.h>

#include "linux/json_text.h"
#include "options/errors.h"

namespace orvex::tools {
namespace {

constexpr char kKey[] = "default.configured.audio.sink";

// With the loop locked.
class DefaultMetadata {
public:
  explicit DefaultMetadata(Daemon& daemon) : m_Daemon(daemon) {
    for (const auto& [id, object] : daemon.GetConnection().GetObjects()) {
      if (object.Get(PW_KEY_METADATA_NAME) == "default") {
        m_Metadata = static_cast<pw_metadata*>(pw_registry_bind(daemon.GetConnection().GetRegistry(), id,
                                                                PW_TYPE_INTERFACE_Metadata, PW_VERSION_METADATA, 0));
      }
    }
    if (m_Metadata == nullptr) {
      throw CommandError("PipeWire keeps no default output: is a session manager, such as WirePlumber, running?");
    }
    static const pw_metadata_events kEvents = [] {
      pw_metadata_events events{};
      events.version = PW_VERSION_METADATA_EVENTS;
      events.property = [](void* self, std::uint32_t subject, const char* key, const char* /*type*/,
                           const char* value) {
        static_cast<DefaultMetadata*>(self)->OnProperty(subject, key, value);
        return 0;
      };
      return events;
    }();
    pw_metadata_add_listener(m_Metadata, &m_Hook, &kEvents, this);
  }
  ~DefaultMetadata() {
    spa_hook_remove(&m_Hook);
    pw_proxy_destroy(reinterpret_cast<pw_proxy*>(m_Metadata));
  }
  DefaultMetadata(const DefaultMetadata&) = delete;
  DefaultMetadata& operator=(const DefaultMetadata&) = delete;

  std::string Get() {
    m_Daemon.RoundTrip();
    return m_Name;
  }
  void Set(const std::string& node) {
    Json::Value value(Json::objectValue);
    value["name"] = node;
    const std::string text = port::CompactJson(value);
    pw_metadata_set_property(m_Metadata, PW_ID_CORE, kKey, node.empty() ? nullptr : "Spa:String:JSON",
                             node.empty() ? nullptr : text.c_str());
    m_Daemon.RoundTrip();
  }

private:
  void OnProperty(std::uint32_t subject, const char* key, const char* value) {
    if (subject != PW_ID_CORE || key == nullptr || std::string(key) != kKey) {
      return;
    }
    m_Name.clear();
    try {
      m_Name = value == nullptr ? "" : port::ParseJsonObject(value, "a JSON object")["name"].asString();
    } catch (const std::exception&) {
      // Not a value that a session manager writes: no choice.
    }
  }

  Daemon& m_Daemon;
  pw_metadata* m_Metadata = nullptr;
  spa_hook m_Hook{};
  std::string m_Name;
};

}  // namespace

std::string GetDefaultOutput(Daemon& daemon) {
  const pipewire::ThreadLoop::Lock lock(daemon.GetLoop());
  return DefaultMetadata(daemon).Get();
}

void SetDefaultOutput(Daemon& daemon, const std::string& node) {
  const pipewire::ThreadLoop::Lock lock(daemon.GetLoop());
  DefaultMetadata(daemon).Set(node);
}

}  // namespace orvex::tools
