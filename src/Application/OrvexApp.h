// The application object: lifecycle, watchdog and messages. It owns the run controller, which gets the events.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Application/OrvexManager.h"
#include "orvex/platform/application.h"

// One per process, made before main() and living until the process ends. All operations run on the main loop.
class COrvexApp : public FwEflApplication {
public:
  COrvexApp();
  ~COrvexApp() override;

  // What happens before main(): queries the number of HDMI inputs, an answer that is not used, and makes the
  // application object. Null when there is no memory for it or for anything in it.
  static COrvexApp* CreateAtProgramStart();

  bool t_HasWindow() override { return false; }
  // Takes every message and knows no method; the reply goes back as it came. Always true.
  bool IfMessageReceived(const std::string& sender, const FwMessage& received, FwMessage& reply) override;
  bool t_IsSuspendable() override { return false; }
  bool t_RunsInBackground() override { return true; }
  // Starts watchdog and run. Always true.
  bool t_OnCreate() override;
  void t_OnDestroy() override;
  bool t_OnEvent(FwEvent* event) override;

  const OrvexManager& GetManager() const { return m_Manager; }

private:
  void m_CreateGravet();
  void m_CreateWatchDogAlarm();
  static bool m_OnWatchDogCallBack(void* data);

  std::unique_ptr<FwAlarm> m_pWatchDogAlarm;
  OrvexManager m_Manager;
  std::int32_t m_WatchDogTimeout = 120;    // in the watchdog's own unit
  std::uint32_t m_WatchDogPeriod = 60000;  // ms
};

// The application object, null before it exists. The object sets it when it is made.
extern COrvexApp* g_pOrvexApp;
