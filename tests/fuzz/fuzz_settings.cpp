// Gives texts to the parsers of a virtual television's files. The first letter of the first line says which file it is:
// "room", "faults", "number" (the next line is the name of the value, the rest its text), or "writes" (writes to one
// settings key).
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>

#include "fuzz/byte_reader.h"
#include "fuzz/require.h"
#include "linux/key_state.h"
#include "linux/number_text.h"
#include "linux/small_files.h"
#include "orvex/platform/remote_voice.h"
#include "orvex/sim/room.h"
#include "orvex/sim/room_json.h"
#include "virtual/fault_table.h"
#include "virtual/television.h"
#include "virtual/television_values.h"

namespace {

using namespace orvex::fuzz;
using namespace orvex;

// A television's directory for as long as the process lives.
class Folder {
public:
  Folder() {
    char name[] = "/tmp/orvex_fuzz_XXXXXX";
    Require(mkdtemp(name) != nullptr, "a directory in /tmp");
    m_Path = name;
    virtual_tv::Television(m_Path).Create();
  }
  ~Folder() { std::filesystem::remove_all(m_Path); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  const std::filesystem::path& Path() const { return m_Path; }

private:
  std::filesystem::path m_Path;
};

const std::filesystem::path& Directory() {
  static const Folder folder;
  return folder.Path();
}

// Leaves out rooms whose reverberation takes long to compute.
void SimulateRoom(const sim::RoomConfig& config) {
  if (config.tv.rt60S > 0.3 || config.optical.rt60S > 0.3 || !config.noiseFile.empty()) {
    return;
  }
  sim::Room room(config);
  room.StartRecording(sim::Time(0));
  const std::vector<std::int16_t> burst(2 * 960, 20000);
  room.Play(sim::Time(0), burst.data(), 960);
  std::vector<std::int16_t> heard(kVoiceBlockSamples);
  room.Record(heard.data(), heard.size());
}

void ReadRoom(const std::string& text) {
  try {
    const sim::RoomConfig room = sim::ParseRoom(text, "room.json");
    sim::CheckRoom(room, "room.json");
    Require(sim::ParseRoom(sim::RoomToJson(room), "room.json") == room, "the room read back is the room written");
    Require(std::isfinite(sim::ActualMicrophoneRateHz(room)), "a room has a microphone");
    SimulateRoom(room);
  } catch (const sim::RoomError& error) {
    Require(std::string(error.what()).rfind("room.json: ", 0) == 0, "an error names the file");
  }
}

void ReadFaults(const std::string& text) {
  try {
    const virtual_tv::FaultTable table = virtual_tv::ParseFaults(text);
    Require(text.find('\0') == std::string::npos, "a text that is no JSON is refused");
    for (const auto& [name, answer] : table.answers) {
      Require(!answer.always || (answer.calls.size() == 1 && answer.calls.front().has_value()), "one answer for ever");
    }
    for (const auto& [name, frames] : table.frames) {
      Require(std::is_sorted(frames.begin(), frames.end()), "frames are in order");
    }
  } catch (const std::runtime_error& error) {
    Require(std::string(error.what()).find("expected") != std::string::npos, "an error says what was expected");
  }
}

void WriteValue(const std::string& name, const std::string& text) {
  const std::vector<virtual_tv::TelevisionValue>& known = virtual_tv::TelevisionValues();
  const bool isKnown = std::any_of(known.begin(), known.end(), [&](const auto& value) { return value.name == name; });
  const virtual_tv::Television television(isKnown ? Directory() : Directory() / "others");
  const std::optional<virtual_tv::TelevisionValue> value = virtual_tv::DescribeTelevisionValue(name);
  Require(!value.has_value() || television.PathOf(name).lexically_normal() == television.PathOf(name),
          "a value lies within its directory");
  try {
    television.Set(name, text);
    Require(value.has_value(), "only values can be set");
    const std::string written = television.Get(name);
    Require(written == port::TrimBlanks(text), "the text read back is the text written");
    if (!value->isText) {
      const std::int64_t number = television.GetNumber(name);
      Require(number >= value->minimum && number <= value->maximum, "a number lies in its range");
      Require(port::ParseNumber(std::to_string(number), value->minimum, value->maximum) == number,
              "the number read back is the number written");
    }
  } catch (const virtual_tv::TelevisionError& error) {
    Require(*error.what() != '\0', "an error has a text");
  }
  if (!isKnown) {
    std::filesystem::remove_all(television.GetDirectory());
  }
}

// Changes the file of one key in every way that the settings store may see: 'r' renames another file to it, 'o'
// writes into it, 'd' deletes it. 'c' and 'l' look for a change as after the file was created and as after it was
// closed.
void WatchKey(ByteReader& input) {
  const std::filesystem::path file = Directory() / "settings/key";
  std::filesystem::remove(file);
  port::KeyState state(file);
  bool isWritten = false;
  while (!input.IsAtEnd()) {
    switch (input.Letter()) {
      case 'r':
        port::ReplaceFile(file, std::to_string(input.Byte()));
        isWritten = true;
        break;
      case 'o': {
        const std::vector<std::uint8_t> bytes = input.Bytes(static_cast<std::size_t>(input.Byte()));
        std::ofstream(file, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        isWritten = true;
        break;
      }
      case 'd':
        std::filesystem::remove(file);
        break;
      case 'c': {
        const bool isChanged = state.TakeChange();
        Require(!isChanged || isWritten, "only a write is a change");
        Require(!state.TakeChange(), "a write counts once");
        isWritten = isWritten && !isChanged;
        break;
      }
      case 'l':
        static_cast<void>(state.TakeClosing());
        Require(!state.TakeChange(), "a write that was closed has counted");
        isWritten = false;
        break;
      default:
        break;
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ByteReader input(data, size);
  const std::string kind = input.Line();
  switch (kind.empty() ? '\0' : kind.front()) {
    case 'r':
      ReadRoom(input.Rest());
      break;
    case 'f':
      ReadFaults(input.Rest());
      break;
    case 'n': {
      const std::string name = input.Line();
      WriteValue(name, input.Rest());
      break;
    }
    case 'w':
      WatchKey(input);
      break;
    default:
      break;
  }
  return 0;
}
