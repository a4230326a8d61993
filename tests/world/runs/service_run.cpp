// One process of the service on a television in virtual time.
#include "world/runs/service_run.h"

#include <cstdio>
#include <cstdlib>
#include <new>

#include "Application/OrvexEventId.h"
#include "Common/AudioControl.h"
#include "Util/DebugDump.h"
#include "Util/Singleton.h"

namespace orvex::runs {

ProcessWideObjects::ProcessWideObjects(Process process) {
  if (process == Process::kWarm) {
    CSingleton<CAudioControl>::GetInstance();
    CSingleton<CDebugDump>::GetInstance();
  }
}

std::string ShippedSound() {
  return ORVEX_TEST_SOUND;
}

ServiceRun::ServiceRun(const std::string& soundFile, Process process) : m_ProcessWide(process) {
  world.soundFile = soundFile;
}

ServiceRun::~ServiceRun() {
  world.journal.onAdd = nullptr;
  world.onCall = nullptr;
  world.scheduler.UnwindAll();
  m_App.reset();
  // The singleton still holds the last recording's files; those of earlier ones are held by nobody.
  CSingleton<CDebugDump>::GetInstance()->Stop();
  while (!world.openFiles.empty()) {
    std::fclose(*world.openFiles.begin());
  }
  // A worker that had to be given up has left its samples.
  while (!world.openBlocks.empty()) {
    std::free(*world.openBlocks.begin());
  }
}

bool ServiceRun::Start() {
  m_Before = {world.muted, world.volume, world.delayMs};
  m_App.reset(COrvexApp::CreateAtProgramStart());
  if (m_App != nullptr) {
    world.Create(*m_App);
  }
  return m_App != nullptr;
}

void ServiceRun::After(const std::string& text, const std::function<void()>& action) {
  world.journal.onAdd = [this, text, action, isDone = false]() mutable {
    if (!isDone && world.journal.Entries().back().text == text) {
      isDone = true;
      action();
    }
  };
}

void ServiceRun::Happens(const std::string& what) {
  world.journal.Add({world.scheduler.Now(), world.scheduler.CurrentThread(), "* " + what, "", ""});
}

void ServiceRun::SwitchOpticalFlag() {
  Happens("optical flag");
  world.ChangeSetting(kOpticalFlagKey, 1);
}

void ServiceRun::ReachTimeLimit() {
  Happens("time limit");
  world.RingTimers();
}

void ServiceRun::Terminate() {
  Happens("termination");
  world.RequestEnd();
}

void ServiceRun::Consent(int value) {
  Happens("consent " + std::to_string(value));
  world.ChangeSetting(kConsentKey, value);
}

void ServiceRun::ChangeDelay(std::uint32_t delayMs) {
  Happens("delay " + std::to_string(delayMs));
  world.delayMs = delayMs;
}

void ServiceRun::SendServiceEvent(std::int32_t type) {
  Happens("event " + std::to_string(type));
  world.Inject(type);
}

}  // namespace orvex::runs
