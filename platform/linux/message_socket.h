// The socket through which other programs send messages to the application.
#pragma once

#include <Ecore.h>
#include <sys/stat.h>

#include <filesystem>
#include <list>

#include "linux/message_peer.h"

namespace orvex::port {

// Main loop only. Anyone who may open the file, its owner, may send; at most kMaximumPeers at a time.
class MessageSocket {
public:
  static constexpr std::size_t kMaximumPeers = 8;

  MessageSocket(std::filesystem::path path, MessagePeer::Answer answer);
  ~MessageSocket() { Close(); }
  MessageSocket(const MessageSocket&) = delete;
  MessageSocket& operator=(const MessageSocket&) = delete;

  // Replaces a socket that nobody serves any more. Why a socket cannot be made is reported; the application gets no
  // messages then.
  void Open();
  // Ends all connections and removes the file.
  void Close();

private:
  static Eina_Bool OnReady(void* socket, Ecore_Fd_Handler* handler);
  void Accept();
  void Admit(int fd);
  void OpenOrThrow();
  void Listen();
  void RemoveStale() const;

  const std::filesystem::path m_Path;
  const MessagePeer::Answer m_Answer;
  int m_Fd = -1;
  struct stat m_File {};  // to remove our own file only
  Ecore_Fd_Handler* m_Handler = nullptr;
  std::list<MessagePeer> m_Peers;
};

}  // namespace orvex::port
