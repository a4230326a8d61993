// The driver of the virtual television: a directory, whose services are files in it.
#include <json/json.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <stdexcept>

#include "conformance/port_driver.h"
#include "virtual/faults.h"
#include "virtual/television.h"

namespace orvex::conformance {
namespace {

namespace fs = std::filesystem;
using virtual_tv::Faults;
using virtual_tv::Television;

constexpr const char* kFolderVariable = "ORVEX_CONFORMANCE_FOLDER";

// The one television of this process, removed at its end. A death test's child uses that of its parent.
class Folder {
public:
  Folder() {
    const char* const parents = getenv(kFolderVariable);
    std::string pattern = (fs::temp_directory_path() / "orvex-conformance-XXXXXX").string();
    if (parents != nullptr) {
      m_Path = parents;
    } else if (mkdtemp(pattern.data()) != nullptr) {
      m_Path = pattern;
      m_IsOwn = true;
      setenv(kFolderVariable, pattern.c_str(), 1);
    }
    setenv("ORVEX_TV", m_Path.c_str(), 1);
    unsetenv("NOTIFY_SOCKET");
    if (Television::Instance().GetDirectory() != m_Path) {
      throw std::runtime_error("cannot make a television in " + m_Path.string());
    }
  }
  ~Folder() {
    if (m_IsOwn) {
      std::error_code ignored;
      fs::remove_all(m_Path, ignored);
    }
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  const fs::path& Path() const { return m_Path; }

private:
  fs::path m_Path;
  bool m_IsOwn = false;
};

const fs::path& TheFolder() {
  static const Folder folder;
  return folder.Path();
}

std::vector<std::string> Lines(const fs::path& file) {
  std::ifstream stream(file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}

// One connection to the application's socket; never waits.
class MessageConnection {
public:
  explicit MessageConnection(const fs::path& path) : m_Fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    if (::connect(m_Fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
      throw std::runtime_error(path.string() + ": " + std::strerror(errno));
    }
  }
  ~MessageConnection() { ::close(m_Fd); }
  MessageConnection(const MessageConnection&) = delete;
  MessageConnection& operator=(const MessageConnection&) = delete;

  void Send(const std::string& line) {
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

Json::Value ParseJson(const std::string& text) {
  std::istringstream stream(text);
  Json::Value value;
  stream >> value;
  return value;
}

// The room and its remote are read once in a process: only its first driver can choose them.
std::set<Ability> Abilities() {
  static bool isFirst = true;
  std::set<Ability> abilities = AllAbilities();
  if (!isFirst) {
    abilities.erase(Ability::kShortenVoiceWindow);
    abilities.erase(Ability::kLoseVoiceBlocks);
  }
  isFirst = false;
  return abilities;
}

class VirtualDriver : public PortDriver {
public:
  VirtualDriver() : PortDriver(Abilities()), m_Folder(TheFolder()) {
    for (const auto& entry : fs::directory_iterator(m_Folder)) {
      fs::remove_all(entry.path());
    }
    Television::Instance().Create();
    Faults::Instance().Reload();
  }

  void PlaceFile(const std::string& fixedPath, const std::string& content) override {
    Write(fixedPath.substr(1), content);
  }

  // "TIME main I tag: text", a line break within the text as \n.
  std::vector<LogRecord> LogRecords() const override {
    std::vector<LogRecord> records;
    for (const std::string& line : Lines(m_Folder / "service.log")) {
      auto record = ParseLogRecord(line.substr(line.find(' ') + 1));
      if (!record) {
        throw std::runtime_error("service.log: " + line.substr(0, 200) + ": expected a record");
      }
      record->text = std::regex_replace(record->text, std::regex(R"(\\n)"), "\n");
      records.push_back(*record);
    }
    return records;
  }

  void PutSetting(const std::string& key, int value) override {
    Television::Instance().Set("settings/" + key, std::to_string(value));
  }
  void SpoilSetting(const std::string& key) override { Write("settings/" + key, "2147483648"); }
  void SendTerminationSignal(int number) override { ::kill(::getpid(), number); }

  void SendMessage(const FwMessage& message) override {
    if (!m_Connection) {
      m_Connection = std::make_unique<MessageConnection>(m_Folder / "messages.sock");
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
  std::vector<Json::Value> Replies() const override {
    std::istringstream received(m_Connection ? m_Connection->Received() : "");
    std::vector<Json::Value> replies;
    for (std::string line; std::getline(received, line) && !received.eof();) {
      replies.push_back(ParseJson(line));
    }
    return replies;
  }

  void SelectSpeaker(std::int32_t selection) override { Set("sound/speaker", selection); }
  void PutTvState(const TvState& state) override {
    Set("tv/hdmi_inputs", state.hdmiInputs);
    Set("tv/device_type", state.deviceType);
    Television::Instance().Set("tv/brand", state.brand);
    Set("tv/resolution", state.resolution);
    Set("tv/frequency", state.frequency);
    Set("tv/source", state.source);
    Set("tv/codec", state.codec);
  }
  std::vector<EventRecord> EventRecords() const override {
    std::vector<EventRecord> records;
    for (const std::string& line : Lines(m_Folder / "events.jsonl")) {
      const Json::Value record = ParseJson(line);
      records.push_back({record["service"].asString(), record["event"].asString(), record["category"].asString(),
                         record["value"].asString()});
    }
    return records;
  }

  void ShortenVoiceWindow(int windowMs) override {
    Write("room.json", R"({"voice": {"window_ms": )" + std::to_string(windowMs) + "}}");
  }
  void LoseVoiceBlocks() override { Write("room.json", R"({"voice": {"loss_probability": 0.5}})"); }
  void RefuseVoiceStart(int result) override {
    Write("faults.json", R"({"voice.start": [)" + std::to_string(result) + "]}");
    Faults::Instance().Reload();
  }

  void Break(Ability service) override {
    switch (service) {
      case Ability::kBreakSettings:
        return MakeInaccessible("settings");
      case Ability::kBreakSoundManager:
        return MakeInaccessible("sound");
      case Ability::kBreakOutputDelay:
        MakeInaccessible("delay");
        return MakeInaccessible("tv/codec");
      case Ability::kBreakTvService:
        return MakeInaccessible("tv");
      case Ability::kBreakEventLog:
        return MakeInaccessible("events.jsonl");
      default:
        throw std::logic_error("Break() of what is no service");
    }
  }

private:
  void Set(const std::string& name, std::int64_t number) { Television::Instance().Set(name, std::to_string(number)); }
  void Write(const std::string& name, const std::string& content) {
    fs::create_directories((m_Folder / name).parent_path());
    std::ofstream(m_Folder / name, std::ios::binary) << content;
  }
  // A link to itself can be neither read nor written, not even by a privileged user.
  void MakeInaccessible(const std::string& name) {
    fs::remove_all(m_Folder / name);
    fs::create_symlink(m_Folder / name, m_Folder / name);
  }

  const fs::path m_Folder;
  std::unique_ptr<MessageConnection> m_Connection;
};

}  // namespace

std::unique_ptr<PortDriver> MakePortDriver() {
  return std::make_unique<VirtualDriver>();
}

}  // namespace orvex::conformance
