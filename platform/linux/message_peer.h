// One connection of the message socket: lines in, one answer line each out.
#pragma once

#include <Ecore.h>

#include <functional>
#include <string>

#include "linux/line_reader.h"

namespace orvex::port {

// Main loop only. A client that does not read its answers is not read from either, so that it costs bounded memory.
class MessagePeer {
public:
  static constexpr std::size_t kMaximumLineBytes = 64 * 1024;

  using Answer = std::function<std::string(const std::string& line)>;
  // `fd` is taken over, not blocking. `onGone` is called once, at the end of the connection; it may destroy the client.
  MessagePeer(int fd, Answer answer, std::function<void(MessagePeer*)> onGone);
  ~MessagePeer();
  MessagePeer(const MessagePeer&) = delete;
  MessagePeer& operator=(const MessagePeer&) = delete;

private:
  static Eina_Bool OnReady(void* peer, Ecore_Fd_Handler* handler);
  // False: the connection has ended.
  bool Serve();
  bool Read();
  bool AnswerNext();
  bool Flush();

  const int m_Fd;
  const Answer m_Answer;
  const std::function<void(MessagePeer*)> m_OnGone;
  LineReader m_Lines{kMaximumLineBytes};
  std::string m_Unsent;
  bool m_HasEnded = false;  // the client sends nothing more
  Ecore_Fd_Handler* m_Handler;
};

}  // namespace orvex::port
