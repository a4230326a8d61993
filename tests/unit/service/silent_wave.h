// A canonical WAV file of silence, there for as long as the object lives.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace orvex::test {

class SilentWave {
public:
  explicit SilentWave(double seconds) {
    char name[] = "/tmp/orvex_test_sound_XXXXXX";
    const int fd = mkstemp(name);
    if (fd < 0) {
      throw std::runtime_error("cannot create a file in /tmp");
    }
    m_Path = name;
    const auto dataBytes = static_cast<std::uint32_t>(seconds * 48000) * 4;
    std::string bytes = "RIFF" + Number(36 + dataBytes) + "WAVEfmt " + Number(16) + std::string("\1\0\2\0", 4) +
                        Number(48000) + Number(48000 * 4) + std::string("\4\0\20\0", 4) + "data" + Number(dataBytes);
    bytes.append(dataBytes, '\0');
    const bool written = write(fd, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    close(fd);
    if (!written) {
      throw std::runtime_error("cannot write " + m_Path);
    }
  }
  ~SilentWave() { std::remove(m_Path.c_str()); }
  SilentWave(const SilentWave&) = delete;
  SilentWave& operator=(const SilentWave&) = delete;

  const std::string& Path() const { return m_Path; }

private:
  static std::string Number(std::uint32_t value) {
    std::string bytes;
    for (unsigned int shift = 0; shift < 32; shift += 8) {
      bytes.push_back(static_cast<char>(value >> shift & 0xFFU));
    }
    return bytes;
  }

  std::string m_Path;
};

}  // namespace orvex::test
