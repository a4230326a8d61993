// Makes this process miss cycles of PipeWire's graph.
#pragma once

#include <atomic>
#include <thread>

namespace orvex::integration {

// While it lives, all threads but the main one are held up again and again, for longer than a cycle lasts. Those of
// libpipewire that run the cycles are among them; they have no name to be known by.
class LateCycles {
public:
  LateCycles();
  ~LateCycles();
  LateCycles(const LateCycles&) = delete;
  LateCycles& operator=(const LateCycles&) = delete;

private:
  void Run() const;

  std::atomic<bool> m_IsEnding{false};
  std::thread m_Thread;
};

}  // namespace orvex::integration
