// Reads when nothing is left to be sent, answers line by line.
#include "linux/message_peer.h"

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "linux/main_loop.h"
#include "linux/message_answer.h"

namespace orvex::port {
namespace {

bool IsWaiting() {
  return errno == EAGAIN || errno == EINTR;
}

}  // namespace

MessagePeer::MessagePeer(int fd, Answer answer, std::function<void(MessagePeer*)> onGone)
    : m_Fd(fd),
      m_Answer(std::move(answer)),
      m_OnGone(std::move(onGone)),
      m_Handler(ecore_main_fd_handler_add(fd, ECORE_FD_READ, &OnReady, this, nullptr, nullptr)) {}

MessagePeer::~MessagePeer() {
  if (m_Handler != nullptr) {
    ecore_main_fd_handler_del(m_Handler);
  }
  ::close(m_Fd);
}

Eina_Bool MessagePeer::OnReady(void* peer, Ecore_Fd_Handler* handler) {
  auto& self = *static_cast<MessagePeer*>(peer);
  if (IsMainLoopEnding()) {
    return ECORE_CALLBACK_RENEW;
  }
  if (!self.Serve()) {
    const auto onGone = self.m_OnGone;  // outlives the peer
    onGone(&self);
    return ECORE_CALLBACK_RENEW;
  }
  ecore_main_fd_handler_active_set(handler, self.m_Unsent.empty() ? ECORE_FD_READ : ECORE_FD_WRITE);
  return ECORE_CALLBACK_RENEW;
}

bool MessagePeer::Serve() {
  if (!Flush()) {
    return false;
  }
  if (m_Unsent.empty() && !m_HasEnded && !Read()) {
    return false;
  }
  while (m_Unsent.empty() && !IsMainLoopEnding() && AnswerNext()) {
    if (!Flush()) {
      return false;
    }
  }
  return !m_HasEnded || !m_Unsent.empty();
}

bool MessagePeer::Read() {
  std::array<char, 16 * 1024> bytes{};
  const ssize_t count = ::recv(m_Fd, bytes.data(), bytes.size(), 0);
  if (count > 0) {
    m_Lines.Feed(bytes.data(), static_cast<std::size_t>(count));
  }
  m_HasEnded = count == 0;
  return count >= 0 || IsWaiting();
}

bool MessagePeer::AnswerNext() {
  std::string line;
  auto found = m_Lines.Next(&line);
  if (found == LineReader::Found::kNothing && m_HasEnded) {
    found = m_Lines.Last(&line);
  }
  if (found == LineReader::Found::kNothing) {
    return false;
  }
  m_Unsent = found == LineReader::Found::kLine
                 ? m_Answer(line)
                 : ErrorLine("line too long: expected at most " + std::to_string(kMaximumLineBytes) + " bytes");
  m_Unsent += '\n';
  return true;
}

bool MessagePeer::Flush() {
  while (!m_Unsent.empty()) {
    const ssize_t count = ::send(m_Fd, m_Unsent.data(), m_Unsent.size(), MSG_NOSIGNAL);
    if (count < 0) {
      return IsWaiting();
    }
    m_Unsent.erase(0, static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace orvex::port
