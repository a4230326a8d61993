// A listening socket on the main loop.
#include "linux/message_socket.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include "linux/main_loop.h"
#include "linux/message_answer.h"
#include "linux/port.h"

namespace orvex::port {
namespace {

[[noreturn]] void Fail(const std::filesystem::path& path, const std::string& reason) {
  throw std::runtime_error(path.string() + ": " + reason + "; no messages are taken");
}

sockaddr_un AddressOf(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string& name = path.native();
  if (name.size() >= sizeof address.sun_path) {
    Fail(path, "a path of " + std::to_string(name.size()) + " bytes, expected at most " +
                   std::to_string(sizeof address.sun_path - 1));
  }
  std::memcpy(address.sun_path, name.c_str(), name.size());
  return address;
}

const sockaddr* Generic(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

int NewSocket() {
  return ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
}

bool IsServed(const std::filesystem::path& path) {
  const sockaddr_un address = AddressOf(path);
  const int fd = NewSocket();
  const bool isRefused = ::connect(fd, Generic(address), sizeof address) != 0 && errno == ECONNREFUSED;
  ::close(fd);
  return !isRefused;
}

}  // namespace

MessageSocket::MessageSocket(std::filesystem::path path, MessagePeer::Answer answer)
    : m_Path(std::move(path)), m_Answer(std::move(answer)) {}

void MessageSocket::Open() {
  try {
    OpenOrThrow();
  } catch (const std::runtime_error& problem) {
    ReportProblem(problem.what());
  }
}

void MessageSocket::OpenOrThrow() {
  RemoveStale();
  m_Fd = NewSocket();
  if (m_Fd < 0) {
    Fail(m_Path, std::strerror(errno));
  }
  try {
    Listen();
  } catch (const std::runtime_error&) {
    ::close(m_Fd);
    m_Fd = -1;
    throw;
  }
  m_Handler = ecore_main_fd_handler_add(m_Fd, ECORE_FD_READ, &OnReady, this, nullptr, nullptr);
}

void MessageSocket::RemoveStale() const {
  struct stat state {};
  if (::lstat(m_Path.c_str(), &state) != 0) {
    return;
  }
  if (!S_ISSOCK(state.st_mode)) {
    Fail(m_Path, "is in the way: expected a socket or nothing");
  }
  if (IsServed(m_Path)) {
    Fail(m_Path, "another service uses this television");
  }
  ::unlink(m_Path.c_str());
}

void MessageSocket::Listen() {
  const sockaddr_un address = AddressOf(m_Path);
  // The file gets the socket's mode, so that it is never open to others, not even for a moment.
  if (::fchmod(m_Fd, 0600) != 0 || ::bind(m_Fd, Generic(address), sizeof address) != 0 ||
      ::listen(m_Fd, kMaximumPeers) != 0 || ::lstat(m_Path.c_str(), &m_File) != 0) {
    Fail(m_Path, std::strerror(errno));
  }
}

void MessageSocket::Close() {
  if (m_Fd < 0) {
    return;
  }
  m_Peers.clear();
  if (m_Handler != nullptr) {
    ecore_main_fd_handler_del(m_Handler);
    m_Handler = nullptr;
  }
  ::close(m_Fd);
  m_Fd = -1;
  struct stat state {};
  if (::lstat(m_Path.c_str(), &state) == 0 && state.st_ino == m_File.st_ino && state.st_dev == m_File.st_dev) {
    ::unlink(m_Path.c_str());
  }
}

Eina_Bool MessageSocket::OnReady(void* socket, Ecore_Fd_Handler* /*handler*/) {
  if (!IsMainLoopEnding()) {
    static_cast<MessageSocket*>(socket)->Accept();
  }
  return ECORE_CALLBACK_RENEW;
}

void MessageSocket::Accept() {
  const int fd = ::accept4(m_Fd, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
  if (fd < 0) {
    return;
  }
  if (m_Peers.size() < kMaximumPeers) {
    Admit(fd);
    return;
  }
  const std::string line = ErrorLine("too many connections: expected at most " + std::to_string(kMaximumPeers)) + "\n";
  [[maybe_unused]] const ssize_t count = ::send(fd, line.data(), line.size(), MSG_NOSIGNAL);
  ::close(fd);
}

void MessageSocket::Admit(int fd) {
  m_Peers.emplace_back(fd, m_Answer, [this](MessagePeer* gone) {
    m_Peers.remove_if([gone](const MessagePeer& peer) { return &peer == gone; });
  });
}

}  // namespace orvex::port
