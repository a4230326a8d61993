// Follows the delay node as it comes and goes.
#include "pipewire/client/delay_control.h"

#include <pipewire/keys.h>
#include <spa/param/param.h>

#include <utility>

#include "pipewire/client/delay_node.h"

namespace orvex::pipewire {

DelayControl::DelayControl(Connection& connection, std::function<void()> onChange)
    : m_Connection(connection), m_OnChange(std::move(onChange)) {
  m_Connection.AddListener(this);
  if (const Object* node = m_Connection.FindNode(kDelayNode)) {
    Bind(node->id);
  }
}

DelayControl::~DelayControl() {
  m_Connection.RemoveListener(this);
}

std::optional<double> DelayControl::GetMs() const {
  return m_DelayMs;
}

unsigned DelayControl::GetReports() const {
  return m_Reports;
}

bool DelayControl::Set(double delayMs) {
  if (!m_Node) {
    return false;
  }
  m_Node->Set(SPA_PARAM_Props, DelayProps(delayMs).Get());
  return true;
}

void DelayControl::OnAdded(const Object& object) {
  if (!m_Node && object.kind == Object::Kind::kNode && object.Get(PW_KEY_NODE_NAME) == kDelayNode) {
    Bind(object.id);
  }
}

void DelayControl::OnRemoved(const Object& object) {
  if (m_Node && object.id == m_Node->GetId()) {
    m_Node.reset();
    m_DelayMs.reset();
    // Another one may have begun before this one was gone.
    if (const Object* next = m_Connection.FindNode(kDelayNode)) {
      Bind(next->id);
    }
    m_OnChange();
  }
}

void DelayControl::Bind(std::uint32_t id) {
  NodeProxy::Callbacks callbacks;
  callbacks.onParameter = [this](std::uint32_t /*parameter*/, const spa_pod* value) {
    if (const std::optional<double> delayMs = DelayProps::Read(value)) {
      m_DelayMs = delayMs;
      ++m_Reports;
      m_OnChange();
    }
  };
  m_Node = std::make_unique<NodeProxy>(m_Connection, id, std::vector<std::uint32_t>{SPA_PARAM_Props}, callbacks);
}

}  // namespace orvex::pipewire
