// Gives bytes to the shipped player as the test sound's WAV file, and checks that it plays exactly what the file
// holds and takes no memory for data that a header promises but the file lacks.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "Application/OrvexSoundPlayer.h"
#include "fuzz/require.h"
#include "world/world.h"

namespace {

using namespace orvex::fuzz;
using orvex::world::World;

constexpr std::size_t kFormatEnd = 36;  // RIFF header and plain format chunk
constexpr std::size_t kDataHeader = 8;
// A larger allocation fails, as on a small television: the address sanitizer takes another eighth of every block.
constexpr std::int64_t kMostMemory = 64 << 20;
constexpr double kLongestPlayMs = 1500;

// A file that is in memory only.
class MemoryFile {
public:
  MemoryFile(const std::uint8_t* bytes, std::size_t count) : m_Fd(memfd_create("sound", 0)) {
    Require(m_Fd >= 0 && write(m_Fd, bytes, count) == static_cast<ssize_t>(count), "a file in memory");
  }
  ~MemoryFile() { close(m_Fd); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  std::string Path() const { return "/proc/self/fd/" + std::to_string(m_Fd); }

private:
  int m_Fd;
};

// What the player has to play. Of the headers only the two sizes count, which are trusted; missing bytes are 0.
struct Sound {
  Sound(const std::uint8_t* bytes, std::size_t count) {
    if (count < kFormatEnd) {
      return;
    }
    const std::uint64_t headerAt = 20 + std::uint64_t{Number(bytes + 16)};
    std::uint8_t header[kDataHeader] = {};
    for (std::size_t i = 0; i < kDataHeader && headerAt + i < count; ++i) {
      header[i] = bytes[headerAt + i];
    }
    length = Number(header + 4);
    for (std::uint64_t at = headerAt + kDataHeader; at < count; ++at) {
      held.push_back(bytes[at]);
    }
  }
  static std::uint32_t Number(const std::uint8_t* bytes) {
    return std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8U | std::uint32_t{bytes[2]} << 16U |
           std::uint32_t{bytes[3]} << 24U;
  }
  std::int16_t Sample(std::size_t index) const {
    const auto byte = [&](std::size_t at) { return at < held.size() ? held[at] : 0U; };
    return static_cast<std::int16_t>(byte(2 * index) | byte(2 * index + 1) << 8U);
  }
  // The number of samples that are played: those of whole frames, none of a sound for which there is no memory.
  std::size_t Samples() const { return length <= kMostMemory ? static_cast<std::size_t>(length / 4 * 2) : 0; }

  std::int64_t length = 0;         // bytes
  std::vector<std::uint8_t> held;  // from the beginning of the sound to the end of the file
};

long PagesInUse() {
  std::ifstream file("/proc/self/statm");
  long size = 0;
  long resident = 0;
  file >> size >> resident;
  return resident;
}

void CheckPlayed(const World& world, const Sound& sound, bool hasEnded) {
  const std::vector<std::int16_t>& taken = world.samplesTaken;
  Require(hasEnded ? taken.size() == sound.Samples() : taken.size() <= sound.Samples(), "as much as the header says");
  for (std::size_t i = 0; i < taken.size(); ++i) {
    Require(taken[i] == sound.Sample(i), "the file's samples, then silence");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const MemoryFile file(data, size);
  const Sound sound(data, size);
  World world;
  world.soundFile = file.Path();
  if (sound.length > kMostMemory) {
    world.answers.Always("calloc", 0);
  }
  {
    OrvexSoundPlayer player;
    const long pagesBefore = PagesInUse();
    player.Prepare("sound.wav", nullptr, nullptr, nullptr);
    Require(player.PlayWave(), "the device opens");
    world.AdvanceMs(kLongestPlayMs);
    const long mostPages = (kMostMemory / 2 + static_cast<std::int64_t>(size)) / sysconf(_SC_PAGESIZE);
    Require(PagesInUse() - pagesBefore < mostPages, "memory for what the file holds, not for what its header says");
    const bool hasEnded = world.runningWorkers == 0;
    Require(hasEnded || static_cast<double>(sound.Samples()) / 96 > kLongestPlayMs / 2, "a short sound ends");
    CheckPlayed(world, sound, hasEnded);
    Require(!hasEnded || (world.openBlocks.empty() && world.pcm == nullptr), "device and memory are given back");
    player.StopWave();
    world.scheduler.UnwindAll();
  }
  // Frees what the player still holds of a sound that is longer than the test.
  while (!world.openBlocks.empty()) {
    std::free(*world.openBlocks.begin());
  }
  return 0;
}
