// The driver of the virtual television: a directory, whose services are files in it.
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <stdexcept>

#include "conformance/pieces_driver.h"
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

class VirtualDriver : public PiecesDriver {
public:
  VirtualDriver()
      : PiecesDriver(Abilities(),
                     {TheFolder() / "settings", TheFolder() / "events.jsonl", TheFolder() / "messages.sock"}),
        m_Folder(TheFolder()) {
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
      case Ability::kBreakSoundManager:
        return MakeInaccessible(m_Folder / "sound");
      case Ability::kBreakOutputDelay:
        MakeInaccessible(m_Folder / "delay");
        return MakeInaccessible(m_Folder / "tv/codec");
      case Ability::kBreakTvService:
        return MakeInaccessible(m_Folder / "tv");
      default:
        return PiecesDriver::Break(service);
    }
  }

private:
  void Set(const std::string& name, std::int64_t number) { Television::Instance().Set(name, std::to_string(number)); }
  void Write(const std::string& name, const std::string& content) {
    fs::create_directories((m_Folder / name).parent_path());
    std::ofstream(m_Folder / name, std::ios::binary) << content;
  }

  const fs::path m_Folder;
};

}  // namespace

std::unique_ptr<PortDriver> MakePortDriver() {
  return std::make_unique<VirtualDriver>();
}

}  // namespace orvex::conformance
