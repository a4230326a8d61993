// One process of the service on a television in virtual time, from program start to the end of the process.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "Application/OrvexApp.h"
#include "support/dump_files.h"
#include "world/world.h"

namespace orvex::runs {

using world::kConsentKey;
using world::kOpticalFlagKey;

// A warm process has made the service's process-wide objects already, outside of any world, so that every run of a test
// program begins alike.
enum class Process { kWarm, kFresh };

struct ProcessWideObjects {
  explicit ProcessWideObjects(Process process);
};

// The test sound that is shipped.
std::string ShippedSound();

class ServiceRun {
public:
  explicit ServiceRun(const std::string& soundFile = ShippedSound(), Process process = Process::kWarm);
  // Takes back what an ended process leaves: memory, open files, debug files.
  ~ServiceRun();
  ServiceRun(const ServiceRun&) = delete;
  ServiceRun& operator=(const ServiceRun&) = delete;

  // Program start and create step. False: there is no application, and the process is over.
  bool Start();
  // From the end of the program start on.
  bool HasStarted() const { return m_App != nullptr; }
  // Time passes until the process has ended, at most 60 s. False when it has not.
  bool ToEnd() { return world.RunToEnd(); }

  // Does `action` right after the first line that reads `text`, on the thread that made it.
  void After(const std::string& text, const std::function<void()>& action);

  // What a user, another application or the system does while the service runs. Each is in the journal as "* …".
  void SwitchOpticalFlag();
  void ReachTimeLimit();
  void Terminate();
  void Consent(int value);
  void ChangeDelay(std::uint32_t delayMs);
  void SendServiceEvent(std::int32_t type);

  const OrvexManager& Manager() const { return m_App->GetManager(); }

  // How the television was before the service started.
  struct Television {
    bool muted = false;
    std::int32_t volume = 0;
    std::uint32_t delayMs = 0;
  };
  const Television& Before() const { return m_Before; }

private:
  void Happens(const std::string& what);

  const test::DumpFiles m_DumpFiles;
  ProcessWideObjects m_ProcessWide;

public:
  world::World world;
  // Threads are held back in this run, so that it may take longer than its parts do.
  bool holdsThreads = false;

private:
  std::unique_ptr<COrvexApp> m_App;
  Television m_Before;
};

}  // namespace orvex::runs
