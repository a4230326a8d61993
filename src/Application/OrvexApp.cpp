// Registers with the watchdog, makes its alarm and passes events on to the run controller.
#include "Application/OrvexApp.h"

#include <new>

#include "Util/OrvexLog.h"
#include "orvex/platform/tv_service.h"
#include "orvex/platform/watchdog.h"

COrvexApp* g_pOrvexApp = nullptr;

namespace {

// The message's method; empty when there is none, or when the body or the method is nothing that has a text.
std::string Method(const FwMessage& message) {
  if (!message.body.isObject()) {
    return {};
  }
  const Json::Value& method = message.body["method"];
  return method.isConvertibleTo(Json::stringValue) ? method.asString() : std::string();
}

}  // namespace

COrvexApp::COrvexApp() : FwEflApplication("org.velta.orvex-service") {
  g_pOrvexApp = this;
}

COrvexApp::~COrvexApp() = default;

COrvexApp* COrvexApp::CreateAtProgramStart() {
  try {
    static_cast<void>(tv_get_hdmi_input_count());
    return new (std::nothrow) COrvexApp;
  } catch (const std::bad_alloc&) {
    // The object had its memory, something in it had none: a string, a format, a subscription.
    return nullptr;
  }
}

bool COrvexApp::t_OnCreate() {
  ORVEX_INFO("Orvex Service Create!");
  m_CreateGravet();
  m_CreateWatchDogAlarm();
  m_Manager.Create(this);
  ORVEX_INFO("Orvex Service Create Done");
  return true;
}

void COrvexApp::m_CreateGravet() {
  if (watchdog_register(m_WatchDogTimeout) == kWatchdogFailed) {
    ORVEX_FAILURE("Failed to register Orvex Service in gravet!");
  }
}

void COrvexApp::m_CreateWatchDogAlarm() {
  m_pWatchDogAlarm = std::make_unique<FwAlarm>();
  static_cast<void>(m_pWatchDogAlarm->Create(this, m_WatchDogPeriod, FwAlarm::kRepeatForever));
  m_pWatchDogAlarm->SetAlarmCallback(m_OnWatchDogCallBack, this);
}

bool COrvexApp::m_OnWatchDogCallBack(void* /*data*/) {
  ORVEX_DEBUG("notify systemd...");
  if (watchdog_notify() == kWatchdogFailed) {
    ORVEX_FAILURE("Failed to notify watchdog");
    return false;
  }
  return true;
}

void COrvexApp::t_OnDestroy() {
  m_Manager.Destroy();
  if (m_pWatchDogAlarm != nullptr) {
    if (m_pWatchDogAlarm->IsActive()) {
      m_pWatchDogAlarm->Destroy();
    }
    m_pWatchDogAlarm.reset();
  }
}

bool COrvexApp::t_OnEvent(FwEvent* event) {
  ORVEX_MILESTONE("pEvent.type %d", event->GetType());
  if (!FwEventIO::t_OnEvent(event)) {
    m_Manager.OnEvent(*event);
  }
  return true;
}

bool COrvexApp::IfMessageReceived(const std::string& /*sender*/, const FwMessage& received, FwMessage& reply) {
  const std::string method = Method(received);
  ORVEX_INFO("IfMessageReceived called,  message Type: %s, method: %s", received.type.c_str(), method.c_str());
  if (!method.empty()) {
    ORVEX_MILESTONE("UNKNOWN MESSAGE");
  }
  if (reply.body.empty()) {
    ORVEX_INFO("reply empty...");
  } else {
    ORVEX_INFO("reply not empty!");
  }
  return true;
}
