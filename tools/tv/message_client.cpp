// One connection per message: a JSON line goes out, a line comes back, both before one deadline.
#include "tv/message_client.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include "options/errors.h"
#include "run/file_descriptor.h"

namespace orvex::tools {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kLongestReply = 1u << 20;

class Connection {
public:
  Connection(const std::string& path, std::chrono::milliseconds timeout)
      : m_Path(path), m_Deadline(Clock::now() + timeout) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
      throw UsageError(path + ": " + std::to_string(path.size()) + " bytes, expected less than " +
                       std::to_string(sizeof address.sun_path) + " for a socket");
    }
    std::copy(path.begin(), path.end(), address.sun_path);
    m_Fd.Reset(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (::connect(m_Fd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
      Fail(std::string("no service listens: ") + std::strerror(errno));
    }
  }

  void Write(const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
      WaitFor(POLLOUT, "taken");
      const ssize_t count = ::send(m_Fd.Get(), text.data() + done, text.size() - done, MSG_NOSIGNAL);
      if (count < 0 && errno != EAGAIN && errno != EINTR) {
        Fail(std::string("cannot be written: ") + std::strerror(errno));
      }
      done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
  }

  std::string ReadLine() {
    std::string reply;
    while (reply.find('\n') == std::string::npos) {
      WaitFor(POLLIN, "answered");
      std::array<char, 4096> bytes{};
      const ssize_t count = ::read(m_Fd.Get(), bytes.data(), bytes.size());
      if (count == 0) {
        Fail("the service closed the connection without an answer");
      }
      if (count < 0 && errno != EAGAIN && errno != EINTR) {
        Fail(std::string("cannot be read: ") + std::strerror(errno));
      }
      reply.append(bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
      if (reply.size() > kLongestReply) {
        Fail("the answer is longer than " + std::to_string(kLongestReply) + " bytes");
      }
    }
    return reply.substr(0, reply.find('\n'));
  }

private:
  void WaitFor(short what, const char* deed) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_Deadline - Clock::now());
    pollfd source{m_Fd.Get(), what, 0};
    if (left.count() <= 0 || ::poll(&source, 1, static_cast<int>(left.count())) == 0) {
      Fail(std::string("the message was not ") + deed + " in time");
    }
  }
  [[noreturn]] void Fail(const std::string& reason) const { throw CommandError(m_Path + ": " + reason); }

  std::string m_Path;
  Clock::time_point m_Deadline;
  FileDescriptor m_Fd;
};

}  // namespace

std::string ExchangeMessage(const std::string& socketPath, const std::string& line, std::chrono::milliseconds timeout) {
  if (line.find('\n') != std::string::npos) {
    throw UsageError("the message has several lines, expected one");
  }
  Connection connection(socketPath, timeout);
  connection.Write(line + "\n");
  return connection.ReadLine();
}

}  // namespace orvex::tools
