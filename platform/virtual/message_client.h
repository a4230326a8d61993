// One connection of the message socket: lines in, one answer line each out.
#pragma once

#include <Ecore.h>

#include <functional>
#include <string>

#include "virtual/line_reader.h"

namespace orvex::virtual_tv {

// Main loop only. A client that does not read its answers is not read from either, so that it costs bounded memory.
class MessageClient {
public:
  static constexpr std::size_t kMaximumLineBytes = 64 * 1024;

  using Answer = std::function<std::string(const std::string& line)>;
  // `fd` is taken over, not blocking. `onGone` is called once, at the end of the connection; it may destroy the client.
  MessageClient(int fd, Answer answer, std::function<void(MessageClient*)> onGone);
  ~MessageClient();
  MessageClient(const MessageClient&) = delete;
  MessageClient& operator=(const MessageClient&) = delete;

private:
  static Eina_Bool OnReady(void* client, Ecore_Fd_Handler* handler);
  // False: the connection has ended.
  bool Serve();
  bool Read();
  bool AnswerNext();
  bool Flush();

  const int m_Fd;
  const Answer m_Answer;
  const std::function<void(MessageClient*)> m_OnGone;
  LineReader m_Lines{kMaximumLineBytes};
  std::string m_Unsent;
  bool m_HasEnded = false;  // the client sends nothing more
  Ecore_Fd_Handler* m_Handler;
};

}  // namespace orvex::virtual_tv
