// The process-wide debug dump: hands recordings and results to its one writer.
#pragma once

#include <memory>

#include "Util/IDebugDumpImpl.h"

// Reached through CSingleton<CDebugDump>. Each operation logs "Assertion failed" and does nothing when there is no
// writer.
class CDebugDump {
public:
  CDebugDump();
  // Writes through `writer`; null leaves the dump without one.
  explicit CDebugDump(std::unique_ptr<IDebugDumpImpl> writer);
  virtual ~CDebugDump();

  // Forwarded to the writer; threads as there.
  void Start();
  void Stop();
  void DebugDump(const std::string& text);
  void DebugDump(const void* data, std::size_t size);

private:
  std::unique_ptr<IDebugDumpImpl> m_pImpl;
};
