// orvex-pc's connection to the PipeWire daemon.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "pipewire/client/connection.h"
#include "pipewire/client/loops.h"

namespace orvex::tools {

class Daemon {
public:
  // Returns when everything that the daemon has is known. Throws CommandError without a daemon.
  Daemon();
  ~Daemon();
  Daemon(const Daemon&) = delete;
  Daemon& operator=(const Daemon&) = delete;

  // What belongs to the connection is used with this loop locked.
  pipewire::ThreadLoop& GetLoop() { return m_Loop; }
  pipewire::Connection& GetConnection() { return *m_Connection; }

  // With the loop locked: returns when `isReached`, which is asked after each Notify() of the loop. False: it was not
  // within `patience`. Throws CommandError when the daemon is gone.
  bool WaitUntil(const std::function<bool()>& isReached, std::chrono::milliseconds patience);
  // With the loop locked: returns when the daemon has answered everything that it was asked so far. Throws
  // CommandError.
  void RoundTrip();

private:
  pipewire::ThreadLoop m_Loop{"orvex-pc"};
  bool m_IsLost = false;
  std::unique_ptr<pipewire::Connection> m_Connection;
};

}  // namespace orvex::tools
