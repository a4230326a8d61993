// Passes everything on to the writer, and logs that there is none.
#include "Util/DebugDump.h"

#include <new>
#include <utility>

#include "Util/DebugDumpImplFile.h"
#include "Util/OrvexLog.h"

CDebugDump::CDebugDump() : CDebugDump(std::unique_ptr<IDebugDumpImpl>(new (std::nothrow) CDebugDumpImplFile)) {}

CDebugDump::CDebugDump(std::unique_ptr<IDebugDumpImpl> writer) : m_pImpl(std::move(writer)) {}

CDebugDump::~CDebugDump() = default;

void CDebugDump::Start() {
  if (m_pImpl == nullptr) {
    ORVEX_FAILURE("Assertion failed");
    return;
  }
  m_pImpl->Start();
}

void CDebugDump::Stop() {
  if (m_pImpl == nullptr) {
    ORVEX_FAILURE("Assertion failed");
    return;
  }
  m_pImpl->Stop();
}

void CDebugDump::DebugDump(const std::string& text) {
  if (m_pImpl == nullptr) {
    ORVEX_FAILURE("Assertion failed");
    return;
  }
  m_pImpl->DebugDump(text);
}

void CDebugDump::DebugDump(const void* data, std::size_t size) {
  if (m_pImpl == nullptr) {
    ORVEX_FAILURE("Assertion failed");
    return;
  }
  m_pImpl->DebugDump(data, size);
}
