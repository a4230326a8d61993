// The socket through which other programs send messages to the application: the television's messages.sock.
#pragma once

#include <Ecore.h>
#include <sys/stat.h>

#include <filesystem>
#include <list>

#include "virtual/message_client.h"

namespace orvex::virtual_tv {

// Main loop only. Anyone who may open the file, its owner, may send; at most kMaximumClients at a time.
class MessageSocket {
public:
  static constexpr std::size_t kMaximumClients = 8;

  MessageSocket(std::filesystem::path path, MessageClient::Answer answer);
  ~MessageSocket() { Close(); }
  MessageSocket(const MessageSocket&) = delete;
  MessageSocket& operator=(const MessageSocket&) = delete;

  // Replaces a socket that nobody serves any more. Throws std::runtime_error with path, reason and what was expected.
  void Open();
  // Ends all connections and removes the file.
  void Close();

private:
  static Eina_Bool OnReady(void* socket, Ecore_Fd_Handler* handler);
  void Accept();
  void Admit(int fd);
  void Listen();
  void RemoveStale() const;

  const std::filesystem::path m_Path;
  const MessageClient::Answer m_Answer;
  int m_Fd = -1;
  struct stat m_File {};  // to remove our own file only
  Ecore_Fd_Handler* m_Handler = nullptr;
  std::list<MessageClient> m_Clients;
};

}  // namespace orvex::virtual_tv
