// Listens to the daemon's profiler.
#pragma once

#include <functional>
#include <memory>

#include "pipewire/client/connection.h"
#include "pipewire/client/cycle_report.h"

namespace orvex::pipewire {

// Used on the loop's thread, or with the loop locked.
class CycleWatch {
public:
  // `onReport`: on the loop's thread. The first Sync() of the connection must be done. A daemon whose configuration
  // leaves the profiler out reports nothing. Throws PipeWireError.
  CycleWatch(const Connection& connection, std::function<void()> onReport);
  ~CycleWatch();
  CycleWatch(const CycleWatch&) = delete;
  CycleWatch& operator=(const CycleWatch&) = delete;

  bool HasProfiler() const;
  const CycleReport& GetReport() const;

private:
  struct State;
  std::unique_ptr<State> m_State;
};

}  // namespace orvex::pipewire
