// Everything is done with the loop locked; its thread notifies whenever the registry changes.
#include "pipewire/test_client.h"

#include <pipewire/extensions/metadata.h>
#include <pipewire/pipewire.h>

#include <algorithm>

#include "pipewire/client/node_proxy.h"

namespace orvex::integration {

using pipewire::Object;
using Lock = pipewire::ThreadLoop::Lock;

TestClient::TestClient() {
  const Lock lock(m_Loop);
  m_Connection = std::make_unique<pipewire::Connection>(m_Loop.Get(), [] {});
  m_Connection->AddListener(this);
}

TestClient::~TestClient() {
  const Lock lock(m_Loop);
  m_Outputs.clear();
  m_Connection.reset();
}

void TestClient::OnAdded(const Object& /*object*/) {
  m_Loop.Notify();
}

void TestClient::OnRemoved(const Object& /*object*/) {
  m_Loop.Notify();
}

bool TestClient::WaitUntil(const std::function<bool()>& isReached) {
  const Lock lock(m_Loop);
  return m_Loop.WaitUntil(isReached, kPatience);
}

bool TestClient::WaitForNode(const std::string& name) {
  return WaitUntil([&] { return m_Connection->FindNode(name) != nullptr; });
}

bool TestClient::WaitForNoNode(const std::string& name) {
  return WaitUntil([&] { return m_Connection->FindNode(name) == nullptr; });
}

bool TestClient::WaitForRunning(const std::string& name, bool isRunning) {
  std::string state;
  std::unique_ptr<pipewire::NodeProxy> node;
  {
    const Lock lock(m_Loop);
    const pipewire::Object* const object = m_Connection->FindNode(name);
    if (object == nullptr) {
      return false;
    }
    pipewire::NodeProxy::Callbacks callbacks;
    callbacks.onState = [&](const std::string& now) {
      state = now;
      m_Loop.Notify();
    };
    node = std::make_unique<pipewire::NodeProxy>(*m_Connection, object->id, std::vector<std::uint32_t>{}, callbacks);
  }
  const bool isReached = WaitUntil([&] { return !state.empty() && (state == "running") == isRunning; });
  const Lock lock(m_Loop);
  node.reset();
  return isReached;
}

std::vector<std::string> TestClient::GetLinks() const {
  const Lock lock(m_Loop);
  const auto& objects = m_Connection->GetObjects();
  const auto nameOf = [&](const Object& link, const char* portKey) {
    const auto port = objects.find(link.GetId(portKey));
    const auto node = port == objects.end() ? port : objects.find(port->second.GetId(PW_KEY_NODE_ID));
    return node == objects.end() ? std::string("?")
                                 : node->second.Get(PW_KEY_NODE_NAME) + ":" + port->second.Get(PW_KEY_PORT_NAME);
  };
  std::vector<std::string> links;
  for (const auto& [id, object] : objects) {
    if (object.kind == Object::Kind::kLink) {
      links.push_back(nameOf(object, PW_KEY_LINK_OUTPUT_PORT) + " " + nameOf(object, PW_KEY_LINK_INPUT_PORT));
    }
  }
  std::sort(links.begin(), links.end());
  return links;
}

bool TestClient::WaitForLinks(std::size_t count) {
  return WaitUntil([&] { return GetLinks().size() == count; });
}

bool TestClient::Sync() {
  const Lock lock(m_Loop);
  bool isDone = false;
  m_Connection->Sync([&] {
    isDone = true;
    m_Loop.Notify();
  });
  return m_Loop.WaitUntil([&] { return isDone; }, kPatience);
}

void TestClient::AddOutput(const std::string& name) {
  const Lock lock(m_Loop);
  m_Outputs[name] = pipewire::CreateNullSink(
      *m_Connection, {{PW_KEY_NODE_NAME, name}, {PW_KEY_MEDIA_CLASS, "Audio/Sink"}, {"audio.position", "FL,FR"}},
      [](const std::string&) {});
}

void TestClient::RemoveOutput(const std::string& name) {
  const Lock lock(m_Loop);
  if (m_Outputs.erase(name) > 0) {
    return;
  }
  if (const Object* node = m_Connection->FindNode(name)) {
    pw_registry_destroy(m_Connection->GetRegistry(), node->id);
  }
}

void TestClient::SetDefaultOutput(const std::string& name) {
  const Lock lock(m_Loop);
  for (const auto& [id, object] : m_Connection->GetObjects()) {
    if (object.Get(PW_KEY_METADATA_NAME) == "default") {
      auto* metadata = static_cast<pw_metadata*>(
          pw_registry_bind(m_Connection->GetRegistry(), id, PW_TYPE_INTERFACE_Metadata, PW_VERSION_METADATA, 0));
      pw_metadata_set_property(metadata, PW_ID_CORE, "default.audio.sink", "Spa:String:JSON",
                               ("{\"name\":\"" + name + "\"}").c_str());
      pw_proxy_destroy(reinterpret_cast<pw_proxy*>(metadata));
    }
  }
}

}  // namespace orvex::integration
