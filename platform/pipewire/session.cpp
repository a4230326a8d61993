// One loop for the life of the process; a connection for the life of a daemon.
#include "pipewire/session.h"

#include <stdexcept>

#include "linux/no_destroy.h"
#include "pipewire/client/pipewire_error.h"

namespace orvex::pipewire {
namespace {

// A daemon answers within a millisecond. One that is stopped holds its caller no longer than this.
constexpr std::chrono::milliseconds kPatience{1000};

constexpr char kProblemName[] = "session";

}  // namespace

// Ends the loop's thread before anything older that its callbacks may use is destroyed.
struct Session::EndOfProcess {
  ~EndOfProcess() { Instance().End(); }
};

Session& Session::Instance() {
  static const port::NoDestroy<Session> session;
  static const EndOfProcess end;
  return *session;
}

int Session::Do(int otherwise, const std::function<int()>& work) {
  try {
    if (!HasLoop()) {
      return otherwise;
    }
    const ThreadLoop::Lock lock(*m_Loop);
    Connect();
    ++m_Users;
    struct Leave {
      unsigned& users;
      ~Leave() { --users; }
    } const leave{m_Users};
    RoundTrip();
    const int answer = work();
    m_Problems.Forget(kProblemName);
    return answer;
  } catch (const std::runtime_error& problem) {
    m_Problems.Report(kProblemName, std::string("PipeWire: ") + problem.what());
    return otherwise;
  }
}

bool Session::WaitUntil(const std::function<bool()>& isReached) {
  return m_Loop->WaitUntil([&] { return m_IsLost || isReached(); }, kPatience) && !m_IsLost;
}

bool Session::HasLoop() {
  const std::lock_guard<std::mutex> lock(m_Mutex);
  if (!m_Loop && !m_HasEnded) {
    m_Loop = std::make_unique<ThreadLoop>("orvex-session");
  }
  return m_Loop != nullptr;
}

void Session::Connect() {
  if (m_Connection && !m_IsLost) {
    return;
  }
  if (m_Users > 0) {
    throw PipeWireError("the daemon is gone");
  }
  Disconnect();
  m_IsLost = false;
  m_Connection = std::make_unique<Connection>(m_Loop->Get(), [this] {
    m_IsLost = true;
    Notify();
  });
  m_Delay = std::make_unique<DelayControl>(*m_Connection, [this] { Notify(); });
}

void Session::Disconnect() {
  m_Delay.reset();
  m_Connection.reset();
}

// The first one of a connection brings the list of all objects.
void Session::RoundTrip() {
  const auto isDone = std::make_shared<bool>(false);
  m_Connection->Sync([this, isDone] {
    *isDone = true;
    Notify();
  });
  if (!WaitUntil([&] { return *isDone; })) {
    throw PipeWireError(m_IsLost ? "the daemon is gone" : "the daemon does not answer");
  }
}

void Session::End() {
  {
    const std::lock_guard<std::mutex> lock(m_Mutex);
    m_HasEnded = true;
    if (!m_Loop) {
      return;
    }
    const ThreadLoop::Lock loopLock(*m_Loop);
    Disconnect();
  }
  m_Loop.reset();
}

}  // namespace orvex::pipewire
