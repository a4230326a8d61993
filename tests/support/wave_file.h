// WAV files for the sound player, as bytes and as temporary files.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace orvex::test {

using Bytes = std::vector<std::uint8_t>;

inline Bytes Joined(const std::vector<Bytes>& parts) {
  Bytes all;
  for (const Bytes& part : parts) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

inline Bytes LittleEndian(std::uint32_t value, int bytes) {
  Bytes result;
  for (int i = 0; i < bytes; ++i) {
    result.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
  return result;
}

inline Bytes ChunkHeader(const std::string& identifier, std::uint32_t size) {
  return Joined({Bytes(identifier.begin(), identifier.end()), LittleEndian(size, 4)});
}

// "RIFF", size, "WAVE" and a format chunk of the plain 16 bytes and `extension`; `formatSize` is the size in its
// header.
inline Bytes WaveBeginning(std::uint32_t formatSize = 16, const Bytes& extension = {}) {
  const Bytes wave = {'W', 'A', 'V', 'E'};
  const Bytes format = Joined({LittleEndian(1, 2), LittleEndian(2, 2), LittleEndian(48000, 4), LittleEndian(192000, 4),
                               LittleEndian(4, 2), LittleEndian(16, 2)});
  return Joined({ChunkHeader("RIFF", 0), wave, ChunkHeader("fmt ", formatSize), format, extension});
}

inline Bytes WaveOf(const Bytes& sound) {
  return Joined({WaveBeginning(), ChunkHeader("data", static_cast<std::uint32_t>(sound.size())), sound});
}

// A file that exists until Remove() or the destructor deletes it.
class TemporaryFile {
public:
  explicit TemporaryFile(const Bytes& content) {
    const int descriptor = mkstemp(m_Path.data());
    if (descriptor < 0) {
      throw std::runtime_error("cannot create " + m_Path);
    }
    close(descriptor);
    Write(content);
  }
  ~TemporaryFile() { Remove(); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  void Write(const Bytes& content) const {
    std::ofstream file(m_Path, std::ios::binary | std::ios::trunc);
    if (!file.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()))
             .flush()) {
      throw std::runtime_error("cannot write " + m_Path);
    }
  }
  void Remove() const { unlink(m_Path.c_str()); }
  const std::string& Path() const { return m_Path; }

private:
  std::string m_Path = "/tmp/orvex_test_sound_XXXXXX";
};

class SilentWave : public TemporaryFile {
public:
  explicit SilentWave(double seconds)
      : TemporaryFile(WaveOf(Bytes(static_cast<std::size_t>(seconds * 48000) * 4, 0))) {}
};

}  // namespace orvex::test
