// Sends the telemetry records, and only while the user agrees to it.
#pragma once

#include <vector>

#include "orvex/platform/application.h"
#include "orvex/platform/event_log.h"
#include "orvex/platform/settings.h"

// Sends event-log messages to the collector while the user has agreed to the default disclaimer, keeps them in memory
// while not, and sends the kept ones when the user agrees. The setting is read afresh each time it matters.
//
// A message's body is an object with the texts "event_name", "category_name", "value_string" and, optionally,
// "service_name". Main loop's thread only; no lock.
class COrvexLogManager {
public:
  COrvexLogManager();
  // Kept messages are lost.
  virtual ~COrvexLogManager();
  COrvexLogManager(const COrvexLogManager&) = delete;
  COrvexLogManager& operator=(const COrvexLogManager&) = delete;

  // 1: sent, or kept for later. 0: the collector is missing or refused the message, which is then lost.
  int AddEventLog(const FwMessage& message);

private:
  static bool m_IsDefaultDisclaimerAgreed();
  static void m_DefaultDisclaimerAgreementChanged(const SettingsNode* node, void* data);
  static void m_ProcessDefaultDsiclaimerAgreementChanged(COrvexLogManager* pThis);
  void m_SendPendingEvents();
  int m_Send(const FwMessage& message);

  std::vector<FwMessage> m_PendingEvents;  // oldest first
  CLogger* m_Logger = nullptr;             // asked for at the first send, then kept
};
