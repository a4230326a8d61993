// Inter-application messages: lines, their answers, and the socket that carries them.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <list>
#include <thread>

#include "linux/line_reader.h"
#include "linux/message_answer.h"
#include "unit/linux/loop_application.h"
#include "unit/linux/port_test.h"

namespace orvex::port {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr std::size_t kLineLimit = 64 * 1024;

std::vector<std::string> LinesOf(const std::vector<std::string>& pieces, std::size_t limit) {
  LineReader reader(limit);
  std::vector<std::string> lines;
  std::string line;
  const auto take = [&](LineReader::Found found) {
    if (found != LineReader::Found::kNothing) {
      lines.push_back(found == LineReader::Found::kLine ? line : "TOO LONG");
    }
    return found != LineReader::Found::kNothing;
  };
  for (const std::string& piece : pieces) {
    reader.Feed(piece.data(), piece.size());
    while (take(reader.Next(&line))) {
    }
  }
  take(reader.Last(&line));
  return lines;
}

TEST(LineReader, JoinsPiecesAndCutsAtLineBreaks) {
  EXPECT_THAT(LinesOf({"ab", "c\nd", "\n\ne"}, 10), ElementsAre("abc", "d", "", "e"));
}

TEST(LineReader, TellsALineThatIsTooLongOnceAndGoesOnWithTheNext) {
  EXPECT_THAT(LinesOf({"12345\n123456\n12345\n"}, 5), ElementsAre("12345", "TOO LONG", "12345"));
  EXPECT_THAT(LinesOf({"123", "456", "789", "\nok\n"}, 5), ElementsAre("TOO LONG", "ok"));
  EXPECT_THAT(LinesOf({"123456", "7"}, 5), ElementsAre("TOO LONG"));
  EXPECT_THAT(LinesOf({"123456", "\n", "1234567\n", "1\n"}, 5), ElementsAre("TOO LONG", "TOO LONG", "1"));
}

class Messages : public PortTest {
protected:
  std::string Answer(const std::string& line) { return AnswerMessage(line, m_Application, false); }

  LoopApplication m_Application;
};

TEST_F(Messages, ReachTheApplicationAsTheyAre) {
  FwMessage received;
  m_Application.onMessage = [&](const FwMessage& message) {
    received = message;
    Json::Value reply;
    reply["text"] = "two\nlines";
    return reply;
  };
  EXPECT_EQ(Answer(R"({"type": "request", "body": {"method": "x"}})"), R"({"text":"two\nlines"})");
  EXPECT_EQ(received.type, "request");
  EXPECT_EQ(received.body["method"], "x");
}

TEST_F(Messages, MayLackTypeAndBodyOrHaveABodyThatIsNoObject) {
  const struct {
    const char* line;
    const char* type;
    Json::Value body;
  } rows[] = {{"{}", "", Json::Value()},
              {R"({"body": 5})", "", 5},
              {R"({"type": "t", "body": null})", "t", Json::Value()},
              {R"({"type": "", "body": "text"})", "", "text"},
              {R"({"type": "event", "body": {"id": 1}})", "event", Json::Value()}};
  for (const auto& row : rows) {
    FwMessage received;
    m_Application.onMessage = [&](const FwMessage& message) {
      received = message;
      return Json::Value();
    };
    EXPECT_EQ(Answer(row.line), "{}") << row.line;
    EXPECT_EQ(received.type, row.type) << row.line;
    if (received.type != "event") {
      EXPECT_EQ(received.body, row.body) << row.line;
    }
  }
}

TEST_F(Messages, AreAnsweredWithAnErrorWhenTheyAreNone) {
  m_Application.onMessage = [](const FwMessage&) {
    ADD_FAILURE() << "the application was asked";
    return Json::Value();
  };
  const std::string deep(2000, '[');
  for (const std::string& line :
       {std::string(), std::string(" "), std::string("hello"), std::string("[]"), std::string("5"), std::string("{"),
        std::string("{} {}"), std::string("{'type': 1}"), std::string(R"({"type": 5})"), std::string(R"({"type": {}})"),
        std::string(R"({"a": 1, "a": 2})"), std::string("\xff\x00", 2), std::string("{}\0{}", 5), deep,
        "{\"body\":" + deep}) {
    const std::string answer = Answer(line);
    EXPECT_THAT(answer, StartsWith("{\"error\":\"")) << line;
    EXPECT_EQ(answer.find('\n'), std::string::npos) << line;
  }
  EXPECT_THAT(Answer(R"({"type": 5})"), HasSubstr(R"(\"type\": 5: expected a text)"));
}

// A connection of another program, with blocking calls: it lives on a thread beside the main loop.
class Client {
public:
  explicit Client(const std::filesystem::path& path) : m_Fd(socket(AF_UNIX, SOCK_STREAM, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.native().size());
    EXPECT_EQ(connect(m_Fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0) << strerror(errno);
    const timeval limit{30, 0};
    setsockopt(m_Fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    setsockopt(m_Fd, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
  }
  ~Client() { close(m_Fd); }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  void Send(const std::string& text) const {
    std::size_t done = 0;
    while (done < text.size()) {
      const ssize_t count = send(m_Fd, text.data() + done, text.size() - done, MSG_NOSIGNAL);
      ASSERT_GT(count, 0) << strerror(errno);
      done += static_cast<std::size_t>(count);
    }
  }

  void EndSending() const { shutdown(m_Fd, SHUT_WR); }

  // One line, or what came before the connection's end.
  std::string Line() {
    std::array<char, 16 * 1024> bytes{};
    std::size_t end = 0;
    while ((end = m_Received.find('\n')) == std::string::npos) {
      const ssize_t count = recv(m_Fd, bytes.data(), bytes.size(), 0);
      if (count <= 0) {
        return std::exchange(m_Received, "");
      }
      m_Received.append(bytes.data(), static_cast<std::size_t>(count));
    }
    const std::string line = m_Received.substr(0, end);
    m_Received.erase(0, end + 1);
    return line;
  }

private:
  std::string m_Received;
  int m_Fd;
};

class MessagesBySocket : public Messages {
protected:
  static constexpr std::int32_t kEnd = 99;

  MessagesBySocket() {
    m_Application.onMessage = [this](const FwMessage& message) {
      ++m_MessageCount;
      Json::Value reply;
      reply["got"] = message.body;
      return reply;
    };
  }

  // Runs the main loop while `talk` runs on another thread.
  void RunWith(const std::function<void()>& talk) {
    std::thread thread;
    m_Application.onCreate = [&] {
      thread = std::thread([this, talk] {
        talk();
        SendEvent(FwEvent(kEnd, m_Application.GetEventReceiver()));  // dropped when the talk has ended the main loop
      });
    };
    m_Application.onEvent = [](std::int32_t type) {
      if (type == kEnd) {
        ui_app_exit();
      }
    };
    m_Application.Run();
    thread.join();
  }

  std::filesystem::path Path() const { return Folder() / "messages.sock"; }

  int m_MessageCount = 0;
};

TEST_F(MessagesBySocket, AnswersEachLineInItsOrder) {
  RunWith([this] {
    Client client(Path());
    client.Send("{\"body\":1}\n{\"body\":2}\n{\"bo");
    EXPECT_EQ(client.Line(), "{\"got\":1}");
    EXPECT_EQ(client.Line(), "{\"got\":2}");
    client.Send("dy\":3}\n");
    EXPECT_EQ(client.Line(), "{\"got\":3}");
  });
  EXPECT_FALSE(std::filesystem::exists(Path())) << "gone with the main loop";
}

TEST_F(MessagesBySocket, IsForItsOwnerOnly) {
  RunWith([this] {
    struct stat state {};
    ASSERT_EQ(stat(Path().c_str(), &state), 0);
    EXPECT_EQ(state.st_mode & 0777, 0600U);
  });
}

TEST_F(MessagesBySocket, DropsABadLineAndServesTheNext) {
  RunWith([this] {
    Client client(Path());
    client.Send("nonsense\n" + std::string(3 * kLineLimit, 'x') + "\n{\"body\":\"" + std::string(60000, 'y') + "\"}\n");
    EXPECT_THAT(client.Line(), StartsWith("{\"error\":\"expected one JSON object per line"));
    EXPECT_EQ(client.Line(), "{\"error\":\"line too long: expected at most 65536 bytes\"}");
    EXPECT_EQ(client.Line(), "{\"got\":\"" + std::string(60000, 'y') + "\"}");
  });
  EXPECT_EQ(m_MessageCount, 1);
}

TEST_F(MessagesBySocket, AnswersAClientThatHasEndedItsSide) {
  RunWith([this] {
    Client client(Path());
    client.Send("{\"body\":1}\n{\"body\":2}");
    client.EndSending();
    EXPECT_EQ(client.Line(), "{\"got\":1}");
    EXPECT_EQ(client.Line(), "{\"got\":2}");
    EXPECT_EQ(client.Line(), "") << "the connection ends";
  });
}

TEST_F(MessagesBySocket, SurvivesAClientThatLeavesWithoutItsAnswers) {
  RunWith([this] {
    for (int round = 0; round < 20; ++round) {
      Client client(Path());
      client.Send("{\"body\":\"" + std::string(50000, 'z') + "\"}\n{\"body\":2}\n");
    }
    Client client(Path());
    client.Send("{}\n");
    EXPECT_EQ(client.Line(), "{\"got\":null}");
  });
}

TEST_F(MessagesBySocket, KeepsManyAnswersForAClientThatReadsLate) {
  constexpr int kMessages = 200;
  RunWith([this] {
    Client client(Path());
    const std::string text(20000, 'w');
    std::thread sender([&] {
      for (int message = 0; message < kMessages; ++message) {
        client.Send("{\"body\":\"" + text + "\"}\n");
      }
    });
    // Another client is served meanwhile, though this one's answers, 4 MB, fill every buffer.
    Client other(Path());
    other.Send("{\"body\":7}\n");
    EXPECT_EQ(other.Line(), "{\"got\":7}");
    for (int message = 0; message < kMessages; ++message) {
      EXPECT_EQ(client.Line().size(), text.size() + 10) << message;
    }
    sender.join();
  });
  EXPECT_EQ(m_MessageCount, kMessages + 1);
}

TEST_F(MessagesBySocket, SendsAReplyThatIsLargerThanAnyBuffer) {
  const std::string large(4000000, 'v');
  m_Application.onMessage = [&](const FwMessage&) { return Json::Value(large); };
  RunWith([&] {
    Client client(Path());
    client.Send("{}\n");
    EXPECT_EQ(client.Line(), '"' + large + '"');
  });
}

TEST_F(MessagesBySocket, TurnsAwayTheNinthClientAndTakesItWhenAnotherHasGone) {
  RunWith([this] {
    std::list<Client> clients;
    for (int number = 0; number < 8; ++number) {
      clients.emplace_back(Path());
      clients.back().Send("{}\n");
      EXPECT_EQ(clients.back().Line(), "{\"got\":null}");
    }
    {
      Client ninth(Path());
      EXPECT_THAT(ninth.Line(), HasSubstr("too many connections: expected at most 8"));
      EXPECT_EQ(ninth.Line(), "");
    }
    clients.front().EndSending();
    EXPECT_EQ(clients.front().Line(), "") << "the connection ends";
    Client late(Path());
    late.Send("{}\n");
    EXPECT_EQ(late.Line(), "{\"got\":null}");
  });
}

TEST_F(MessagesBySocket, SendsTheReplyToAMessageThatEndsTheApplication) {
  m_Application.onMessage = [](const FwMessage&) {
    ui_app_exit();
    return Json::Value("bye");
  };
  RunWith([this] {
    Client client(Path());
    client.Send("{}\n{}\n");
    EXPECT_EQ(client.Line(), "\"bye\"");
    EXPECT_EQ(client.Line(), "") << "nothing after the end";
  });
}

TEST_F(MessagesBySocket, ReplacesASocketThatNobodyServes) {
  {
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, Path().c_str(), Path().native().size());
    ASSERT_EQ(bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(fd);
  }
  ASSERT_TRUE(std::filesystem::exists(Path()));
  RunWith([this] {
    Client client(Path());
    client.Send("{}\n");
    EXPECT_EQ(client.Line(), "{\"got\":null}");
  });
}

TEST_F(MessagesBySocket, LeavesASocketAloneThatIsServedAndAFileThatIsNone) {
  const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, Path().c_str(), Path().native().size());
  ASSERT_EQ(bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(listen(fd, 1), 0);
  testing::internal::CaptureStderr();
  RunWith([] {});
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr(Path().string() + ": another service uses this television; no messages are taken"));
  EXPECT_TRUE(std::filesystem::exists(Path()));
  close(fd);
  Remove("messages.sock");
  Echo("messages.sock", "a file");
  testing::internal::CaptureStderr();
  RunWith([] {});
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("is in the way: expected a socket or nothing"));
  EXPECT_EQ(Content("messages.sock"), "a file");
}

TEST_F(MessagesBySocket, TakesEventsOnlyWhereThatIsAllowed) {
  const std::string line = R"({"type":"event","body":{"id":10005}})";
  RunWith([&] {
    Client client(Path());
    client.Send(line + "\n");
    EXPECT_EQ(client.Line(), "{\"got\":{\"id\":10005}}") << "a message like any other";
  });
  EXPECT_THAT(m_Application.steps, ElementsAre("create", "event 99", "destroy"));
  m_Application.steps.clear();
  m_MessageCount = 0;
  AllowInjectedEvents(true);
  RunWith([&] {
    Client client(Path());
    client.Send(line + "\n" + R"({"type":"event","body":{"id":"x"}})" + "\n" + R"({"type":"event"})" + "\n");
    EXPECT_EQ(client.Line(), "{}");
    EXPECT_THAT(client.Line(), HasSubstr(R"(event \"id\": \"x\": expected a 32-bit integer)"));
    EXPECT_THAT(client.Line(), HasSubstr(R"(event \"id\": null)"));
  });
  AllowInjectedEvents(false);
  EXPECT_THAT(m_Application.steps, ElementsAre("create", "event 10005", "event 99", "destroy"));
  EXPECT_EQ(m_MessageCount, 0);
}

}  // namespace
}  // namespace orvex::port
