// Asks for consent before each record, sends what may be sent and keeps the rest in a queue.
#include "Util/OrvexLogManager.h"

#include <string>

#include "Util/OrvexLog.h"

namespace {

constexpr char kConsentKey[] = "db/menu/tessar/homedatacontrol/defaultdisclaimeragree";
constexpr char kDefaultService[] = "21_remocon";
constexpr int kKeptOrSent = 1;
constexpr int kLost = 0;

}  // namespace

COrvexLogManager::COrvexLogManager() {
  static_cast<void>(settings_subscribe(kConsentKey, m_DefaultDisclaimerAgreementChanged, this));
}

COrvexLogManager::~COrvexLogManager() {
  static_cast<void>(settings_unsubscribe(kConsentKey, m_DefaultDisclaimerAgreementChanged));
}

bool COrvexLogManager::m_IsDefaultDisclaimerAgreed() {
  int agreed = 0;
  const int result = settings_get_int(kConsentKey, &agreed);
  if (result != kSettingsDone) {
    ORVEX_FAILURE("(r=%d) get defaultdisclaimeragree failed", result);
    return false;
  }
  ORVEX_INFO("defaultdisclaimeragree=%d", agreed);
  return agreed != 0;
}

int COrvexLogManager::AddEventLog(const FwMessage& message) {
  if (!m_IsDefaultDisclaimerAgreed()) {
    m_PendingEvents.push_back(message);
    return kKeptOrSent;
  }
  return m_Send(message);
}

int COrvexLogManager::m_Send(const FwMessage& message) {
  const std::string event = message.body["event_name"].asString();
  const std::string category = message.body["category_name"].asString();
  const std::string value = message.body["value_string"].asString();
  const std::string service = message.body["service_name"].asString();
  ORVEX_INFO("Service[%s] Event[%s] Category[%s] Value[%s]", service.c_str(), event.c_str(), category.c_str(),
             value.c_str());
  if (m_Logger == nullptr) {
    m_Logger = event_log_get_instance();
  }
  if (m_Logger == nullptr) {
    ORVEX_FAILURE("Get[CLogger]instance err");
    return kLost;
  }
  const int result = event_log_add_sync(m_Logger, service.empty() ? kDefaultService : service, event, category, value);
  ORVEX_INFO("add event log sync:%d", result);
  if (result != kEventLogAccepted) {
    ORVEX_FAILURE("Could not send event log");
    return kLost;
  }
  return kKeptOrSent;
}

void COrvexLogManager::m_DefaultDisclaimerAgreementChanged(const SettingsNode* /*node*/, void* data) {
  ORVEX_INFO("");
  auto* pThis = static_cast<COrvexLogManager*>(data);
  if (pThis == nullptr) {
    ORVEX_FAILURE("Assertion failed");
  }
  m_ProcessDefaultDsiclaimerAgreementChanged(pThis);
}

void COrvexLogManager::m_ProcessDefaultDsiclaimerAgreementChanged(COrvexLogManager* pThis) {
  ORVEX_INFO("");
  if (!m_IsDefaultDisclaimerAgreed()) {
    ORVEX_DEBUG("user doesn't agree default disclaimer!");
    return;
  }
  if (pThis != nullptr) {
    pThis->m_SendPendingEvents();
  }
}

// Consent is asked for again with each message. When the user has withdrawn it meanwhile, AddEventLog() puts the
// message back into the queue, and it is lost when the queue is emptied.
void COrvexLogManager::m_SendPendingEvents() {
  const std::size_t kept = m_PendingEvents.size();
  for (std::size_t i = 0; i < kept; ++i) {
    static_cast<void>(AddEventLog(FwMessage(m_PendingEvents[i])));
  }
  m_PendingEvents.clear();
}
