// The port's connection to the PipeWire daemon, which the sound manager and the output delay share.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>

#include "linux/known_problems.h"
#include "pipewire/client/connection.h"
#include "pipewire/client/delay_control.h"
#include "pipewire/client/loops.h"
#include "pipewire/client/pc_config.h"

namespace orvex::pipewire {

// Any thread. Connects when it is first used, and anew when the daemon was gone.
class Session {
public:
  static Session& Instance();

  // Calls `work` with the loop locked, when everything that the daemon has told until now is known. Answers what `work`
  // answers, or `otherwise` when there is no daemon or it is silent. What is wrong is reported once, also that `work`
  // throws a PipeWireError or a PcConfigError.
  int Do(int otherwise, const std::function<int()>& work);

  // For `work`, until it has returned.
  Connection& GetConnection() { return *m_Connection; }
  DelayControl& GetDelay() { return *m_Delay; }
  // Lets the loop go on until `isReached`, which is asked after each change of the delay and after each Notify(), which
  // a callback calls. False: the daemon is gone or has not answered for a second.
  bool WaitUntil(const std::function<bool()>& isReached);
  void Notify() { m_Loop->Notify(); }

private:
  struct EndOfProcess;

  bool HasLoop();
  void Connect();
  void Disconnect();
  void RoundTrip();
  void End();

  port::KnownProblems m_Problems;
  std::mutex m_Mutex;  // of the pointer to the loop
  bool m_HasEnded = false;
  std::unique_ptr<ThreadLoop> m_Loop;
  // With the loop locked.
  unsigned m_Users = 0;  // of the connection, which each of them may wait for
  bool m_IsLost = false;
  std::unique_ptr<Connection> m_Connection;
  std::unique_ptr<DelayControl> m_Delay;
};

}  // namespace orvex::pipewire
