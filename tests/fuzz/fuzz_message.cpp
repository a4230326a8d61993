// Sends bytes through a connection of the message socket and its parser to the service's message handler, and checks
// that each line gets one answer, however the bytes are split.
//
// The first byte says in pieces of how many bytes the rest arrives, unless the rest is very long; its highest bit
// allows events to be injected. A byte of value 1 stands for 16384 blanks, which JSON ignores: a few of them make a
// line that is too long.
#include <sys/socket.h>
#include <unistd.h>

#include <json/json.h>

#include <memory>
#include <sstream>

#include "Application/OrvexApp.h"
#include "fuzz/byte_reader.h"
#include "fuzz/require.h"
#include "linux/main_loop.h"
#include "linux/message_answer.h"
#include "linux/message_peer.h"
#include "world/world.h"

namespace {

using namespace orvex::fuzz;
using orvex::port::MessagePeer;

Ecore_Fd_Cb handlerFunction = nullptr;
const void* handlerData = nullptr;

// The other end of a connection.
class Peer {
public:
  Peer(const MessagePeer::Answer& answer) {
    int ends[2] = {};
    Require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends) == 0, "a pair of sockets");
    m_Fd = ends[0];
    m_Client = std::make_unique<MessagePeer>(ends[1], answer, [this](MessagePeer*) { m_Client.reset(); });
  }
  ~Peer() { close(m_Fd); }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  void Send(const std::string& bytes) {
    Require(send(m_Fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size()), "room to send");
    Serve();
  }
  // Ends the client's stream and returns all answers.
  std::string End() {
    Require(shutdown(m_Fd, SHUT_WR) == 0, "an end to send");
    for (int turn = 0; turn < 3 && m_Client != nullptr; ++turn) {
      Serve();
    }
    Require(m_Client == nullptr, "a connection that has ended is closed");
    return m_Answers;
  }

private:
  void Serve() {
    static_cast<void>(handlerFunction(const_cast<void*>(handlerData), nullptr));
    char bytes[4096];
    for (ssize_t count = 0; (count = recv(m_Fd, bytes, sizeof bytes, 0)) > 0;) {
      m_Answers.append(bytes, static_cast<std::size_t>(count));
    }
  }

  int m_Fd = -1;
  std::unique_ptr<MessagePeer> m_Client;
  std::string m_Answers;
};

std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

bool IsError(const std::string& answer) {
  Json::Value root;
  std::istringstream stream(answer);
  Require(Json::parseFromStream(Json::CharReaderBuilder(), stream, &root, nullptr) && root.isObject(),
          "an answer is a JSON object");
  Require(root.empty() || (root.size() == 1 && root["error"].isString()), "an answer is empty or an error");
  return !root.empty();
}

// The input with blanks in place of its bytes of value 1; of at most six, so that the text does not become too long.
std::string WithBlanks(const std::string& input) {
  constexpr std::size_t kBlanks = 16384;
  constexpr std::size_t kMostBytes = 5 * kBlanks;
  std::string text;
  for (const char byte : input) {
    if (byte != 1) {
      text += byte;
    } else if (text.size() < kMostBytes) {
      text.append(kBlanks, ' ');
    }
  }
  return text;
}

void CheckAnswers(const std::vector<std::string>& lines, const std::vector<std::string>& answers,
                  const orvex::world::Journal& journal) {
  Require(lines.size() == answers.size(), "each line has one answer");
  int asked = 0;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const bool isTooLong = lines[i].size() > MessagePeer::kMaximumLineBytes;
    Require(isTooLong == (answers[i].rfind("{\"error\":\"line too long", 0) == 0),
            "a line that is too long is refused");
    if (!IsError(answers[i])) {
      ++asked;
      Require(lines[i].find('\0') == std::string::npos, "a line that is no JSON is refused");
    }
  }
  Require(asked == journal.CountStartingWith("I0 IfMessageReceived called") + journal.CountStartingWith("> SendEvent("),
          "what is not refused reaches the application once");
}

}  // namespace

Ecore_Fd_Handler* ecore_main_fd_handler_add(int /*fd*/, Ecore_Fd_Handler_Flags /*flags*/, Ecore_Fd_Cb function,
                                            const void* data, Ecore_Fd_Cb /*bufferFunction*/,
                                            const void* /*bufferData*/) {
  handlerFunction = function;
  handlerData = data;
  return nullptr;
}
void* ecore_main_fd_handler_del(Ecore_Fd_Handler* /*handler*/) {
  return nullptr;
}
void ecore_main_fd_handler_active_set(Ecore_Fd_Handler* /*handler*/, Ecore_Fd_Handler_Flags /*flags*/) {}

bool orvex::port::IsMainLoopEnding() {
  return false;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ByteReader input(data, size);
  const int first = input.Byte();
  const std::string text = WithBlanks(input.Rest());
  const bool mayInject = first >= 128;
  const bool isInSmallPieces = first % 128 < 64 && text.size() < 16384;
  const std::size_t piece = isInSmallPieces ? static_cast<std::size_t>(first % 128 + 1) : 4000;

  orvex::world::World world;
  COrvexApp app;
  Peer peer([&](const std::string& line) { return orvex::port::AnswerMessage(line, app, mayInject); });
  for (std::size_t at = 0; at < text.size(); at += piece) {
    peer.Send(text.substr(at, piece));
  }
  CheckAnswers(LinesOf(text), LinesOf(peer.End()), world.journal);
  return 0;
}
