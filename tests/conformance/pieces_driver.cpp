// Writes the files that the pieces read, and reads those that they write.
#include "conformance/pieces_driver.h"

#include <json/json.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace orvex::conformance {
namespace {

namespace fs = std::filesystem;

Json::Value ParseJson(const std::string& text) {
  std::istringstream stream(text);
  Json::Value value;
  stream >> value;
  return value;
}

// In one step, as programs do that are careful with readers.
void Replace(const fs::path& file, const std::string& content) {
  fs::create_directories(file.parent_path());
  const fs::path hidden = file.parent_path() / ("." + file.filename().string());
  std::ofstream(hidden, std::ios::binary) << content;
  fs::rename(hidden, file);
}

}  // namespace

// One connection to the application's socket; never waits.
class PiecesDriver::Connection {
public:
  explicit Connection(const fs::path& path) : m_Fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    if (::connect(m_Fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
      throw std::runtime_error(path.string() + ": " + std::strerror(errno));
    }
  }
  ~Connection() { ::close(m_Fd); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void Send(const std::string& line) const {
    if (::send(m_Fd, line.data(), line.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(line.size())) {
      throw std::runtime_error(std::string("cannot send a message: ") + std::strerror(errno));
    }
  }
  // All that has come, so far.
  const std::string& Received() {
    char piece[4096];
    for (ssize_t count = 0; (count = ::recv(m_Fd, piece, sizeof piece, MSG_DONTWAIT)) > 0;) {
      m_Received.append(piece, static_cast<std::size_t>(count));
    }
    return m_Received;
  }

private:
  int m_Fd;
  std::string m_Received;
};

PiecesDriver::PiecesDriver(const std::set<Ability>& abilities, PiecePlaces places)
    : PortDriver(abilities), m_Places(std::move(places)) {}

PiecesDriver::~PiecesDriver() = default;

void PiecesDriver::PutSetting(const std::string& key, int value) {
  Replace(m_Places.settingsFolder / key, std::to_string(value) + "\n");
}

void PiecesDriver::SpoilSetting(const std::string& key) {
  Replace(m_Places.settingsFolder / key, "2147483648");
}

void PiecesDriver::SendTerminationSignal(int number) {
  ::kill(::getpid(), number);
}

void PiecesDriver::SendMessage(const FwMessage& message) {
  if (!m_Connection) {
    m_Connection = std::make_unique<Connection>(m_Places.messageSocket);
  }
  Json::Value line;
  line["type"] = message.type;
  if (!message.body.isNull()) {
    line["body"] = message.body;
  }
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  m_Connection->Send(Json::writeString(writer, line) + "\n");
}

std::vector<Json::Value> PiecesDriver::Replies() const {
  std::istringstream received(m_Connection ? m_Connection->Received() : "");
  std::vector<Json::Value> replies;
  for (std::string line; std::getline(received, line) && !received.eof();) {
    replies.push_back(ParseJson(line));
  }
  return replies;
}

std::vector<EventRecord> PiecesDriver::EventRecords() const {
  std::vector<EventRecord> records;
  std::ifstream file(m_Places.eventLogFile);
  for (std::string line; std::getline(file, line);) {
    const Json::Value record = ParseJson(line);
    records.push_back({record["service"].asString(), record["event"].asString(), record["category"].asString(),
                       record["value"].asString()});
  }
  return records;
}

void PiecesDriver::Break(Ability service) {
  switch (service) {
    case Ability::kBreakSettings:
      return MakeInaccessible(m_Places.settingsFolder);
    case Ability::kBreakEventLog:
      return MakeInaccessible(m_Places.eventLogFile);
    default:
      throw std::logic_error("Break() of what is no piece");
  }
}

void PiecesDriver::MakeInaccessible(const fs::path& path) {
  fs::remove_all(path);
  fs::create_symlink(path, path);
}

}  // namespace orvex::conformance
