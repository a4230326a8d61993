#include "pc/daemon.h"

#include "options/errors.h"
#include "pipewire/client/pipewire_error.h"

namespace orvex::tools {
namespace {

constexpr std::chrono::seconds kAnswerPatience(3);

}  // namespace

Daemon::Daemon() {
  const pipewire::ThreadLoop::Lock lock(m_Loop);
  try {
    m_Connection = std::make_unique<pipewire::Connection>(m_Loop.Get(), [this] {
      m_IsLost = true;
      m_Loop.Notify();
    });
    RoundTrip();
  } catch (const pipewire::PipeWireError& problem) {
    throw CommandError(std::string("PipeWire cannot be reached: ") + problem.what());
  } catch (...) {
    m_Connection.reset();
    throw;
  }
}

Daemon::~Daemon() {
  const pipewire::ThreadLoop::Lock lock(m_Loop);
  m_Connection.reset();
}

bool Daemon::WaitUntil(const std::function<bool()>& isReached, std::chrono::milliseconds patience) {
  const bool isDone = m_Loop.WaitUntil([&] { return m_IsLost || isReached(); }, patience);
  if (m_IsLost) {
    throw CommandError("PipeWire has ended");
  }
  return isDone;
}

void Daemon::RoundTrip() {
  const auto isAnswered = std::make_shared<bool>(false);
  m_Connection->Sync([this, isAnswered] {
    *isAnswered = true;
    m_Loop.Notify();
  });
  if (!WaitUntil([&] { return *isAnswered; }, kAnswerPatience)) {
    throw CommandError("PipeWire does not answer");
  }
}

}  // namespace orvex::tools
