// A message to a listening service, and to one that does not listen or answer.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "options/errors.h"
#include "run/file_descriptor.h"
#include "tv/command_line.h"
#include "tv/message_client.h"
#include "unit/tools/temporary_folder.h"

namespace orvex::tools {
namespace {

using testing::HasSubstr;

constexpr std::chrono::seconds kGenerous{60};

// Listens from its construction on; answers one client when told to.
class Listener {
public:
  explicit Listener(const std::string& path) : m_Socket(::socket(AF_UNIX, SOCK_STREAM, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(path.begin(), path.end(), address.sun_path);
    EXPECT_EQ(0, ::bind(m_Socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address));
    EXPECT_EQ(0, ::listen(m_Socket.Get(), 1));
  }

  // Reads from a client up to its first line end and answers, or closes the connection when `reply` is empty.
  std::string Answer(const std::string& reply) const {
    const FileDescriptor client(::accept(m_Socket.Get(), nullptr, nullptr));
    std::string received;
    std::array<char, 100> bytes{};
    while (received.find('\n') == std::string::npos) {
      const ssize_t count = ::read(client.Get(), bytes.data(), bytes.size());
      if (count <= 0) {
        break;
      }
      received.append(bytes.data(), static_cast<std::size_t>(count));
    }
    if (!reply.empty()) {
      EXPECT_EQ(static_cast<ssize_t>(reply.size()), ::send(client.Get(), reply.data(), reply.size(), MSG_NOSIGNAL));
    }
    return received;
  }

private:
  FileDescriptor m_Socket;
};

template <typename Error>
std::string Refusal(const std::string& path, const std::string& line, std::chrono::milliseconds timeout) {
  try {
    return "answered " + ExchangeMessage(path, line, timeout);
  } catch (const Error& error) {
    return error.what();
  }
}

TEST(ExchangeMessage, SendsOneLineAndReturnsTheReply) {
  const TemporaryFolder folder;
  const Listener listener(folder / "messages.sock");
  std::string received;
  std::thread service([&] { received = listener.Answer("{\"a\":1}\nmore\n"); });
  EXPECT_EQ("{\"a\":1}", ExchangeMessage(folder / "messages.sock", "{\"method\":\"x\"}", kGenerous));
  service.join();
  EXPECT_EQ("{\"method\":\"x\"}\n", received);
}

TEST(ExchangeMessage, SaysThatAServiceHungUpOrNeverAnswered) {
  const TemporaryFolder folder;
  const std::string path = folder / "messages.sock";
  const Listener listener(path);
  EXPECT_THAT(Refusal<CommandError>(path, "{}", std::chrono::milliseconds(1)), HasSubstr("not answered in time"));
  std::thread service([&] {
    listener.Answer("");  // the client that did not wait
    listener.Answer("");
  });
  EXPECT_THAT(Refusal<CommandError>(path, "{}", kGenerous), HasSubstr("closed the connection without an answer"));
  service.join();
}

TEST(ExchangeMessage, NamesASocketThatCannotBeUsed) {
  const TemporaryFolder folder;
  EXPECT_THAT(Refusal<CommandError>(folder / "messages.sock", "{}", kGenerous),
              HasSubstr("messages.sock: no service listens"));
  EXPECT_THAT(Refusal<UsageError>(std::string(200, 'x'), "{}", kGenerous), HasSubstr("200 bytes, expected less than"));
  EXPECT_THAT(Refusal<UsageError>(folder / "messages.sock", "{\n}", kGenerous), HasSubstr("several lines"));
}

TEST(SendCommand, FailsWhenTheReplyIsAnErrorAndPrintsItAnyway) {
  const TemporaryFolder folder;
  const Listener listener(folder / "messages.sock");
  for (const auto& [reply, exitCode] : std::map<std::string, int>{{R"({"error":"no"})", 1},
                                                                  {R"({"error": null})", 1},
                                                                  {R"({"result":"error"})", 0},
                                                                  {R"({})", 0},
                                                                  {R"(["error"])", 0}}) {
    std::thread service([&line = reply, &listener] { listener.Answer(line + "\n"); });
    const std::string directory = folder.Path();
    const std::array<const char*, 5> arguments{"orvex-tv", "send", "--tv", directory.c_str(), R"({"type": "ask"})"};
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(exitCode, RunCommandLine(static_cast<int>(arguments.size()), arguments.data())) << reply;
    service.join();
    EXPECT_EQ(reply + "\n", testing::internal::GetCapturedStdout());
    EXPECT_EQ(exitCode == 0 ? "" : "orvex-tv: " + directory + "/messages.sock: the reply is an error\n",
              testing::internal::GetCapturedStderr());
  }
}

}  // namespace
}  // namespace orvex::tools
