// Where a debug dump goes: the interface behind CDebugDump.
#pragma once

#include <cstddef>
#include <string>

class IDebugDumpImpl {
public:
  virtual ~IDebugDumpImpl() = default;
  // Begins the dump of a recording. Recorder thread.
  virtual void Start() = 0;
  // Ends it. Main loop.
  virtual void Stop() = 0;
  // Adds a text to the results, as it is. Voice delivery thread and main loop.
  virtual void DebugDump(const std::string& text) = 0;
  // Adds `size` bytes to the raw recording. Voice delivery thread.
  virtual void DebugDump(const void* data, std::size_t size) = 0;
};
