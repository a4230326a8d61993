// Reads the whole input into memory first, as a pipe gives its bytes only once, and tells a WAV file by its first
// bytes.
#include "replay/recording.h"

#include <sndfile.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>

namespace orvex::tools {
namespace {

struct FileCloser {
  void operator()(std::FILE* file) const {
    if (file != stdin) {
      std::fclose(file);
    }
  }
};

struct SoundFileCloser {
  void operator()(SNDFILE* file) const { sf_close(file); }
};

// RIFF is little-endian, RIFX big-endian; RF64 may be longer than 4 GiB.
bool IsWave(const std::vector<std::uint8_t>& bytes) {
  if (bytes.size() < 12) {
    return false;
  }
  const std::string kind(bytes.begin(), bytes.begin() + 4);
  const std::string form(bytes.begin() + 8, bytes.begin() + 12);
  return (kind == "RIFF" || kind == "RIFX" || kind == "RF64") && form == "WAVE";
}

// Some hours of sound.
constexpr std::size_t kMostBytes = 1u << 30;

std::vector<std::uint8_t> ReadBytes(const std::string& path) {
  const std::unique_ptr<std::FILE, FileCloser> file(path == "-" ? stdin : std::fopen(path.c_str(), "rb"));
  std::vector<std::uint8_t> bytes;
  std::uint8_t piece[65536];
  for (std::size_t count = 0; file != nullptr && (count = std::fread(piece, 1, sizeof piece, file.get())) > 0;) {
    bytes.insert(bytes.end(), piece, piece + count);
    if (bytes.size() > kMostBytes) {
      throw RecordingError(path + ": more than " + std::to_string(kMostBytes) +
                           " bytes, expected a debug dump or a WAV file");
    }
  }
  if (file == nullptr || std::ferror(file.get()) != 0) {
    throw RecordingError(path + ": cannot be read: " + std::strerror(errno) + "; expected a debug dump or a WAV file");
  }
  return bytes;
}

// Full scale is 1.0. What is no number is silence.
std::int16_t ToSixteenBits(double sample) {
  if (std::isnan(sample)) {
    return 0;
  }
  return static_cast<std::int16_t>(std::lrint(std::clamp(sample * 32768.0, -32768.0, 32767.0)));
}

// Lets libsndfile read bytes that are in memory.
struct Memory {
  const std::vector<std::uint8_t>& bytes;
  sf_count_t position = 0;

  static Memory& Of(void* memory) { return *static_cast<Memory*>(memory); }
  static sf_count_t Length(void* memory) { return static_cast<sf_count_t>(Of(memory).bytes.size()); }
  static sf_count_t Tell(void* memory) { return Of(memory).position; }
  static sf_count_t Seek(sf_count_t offset, int whence, void* memory) {
    const sf_count_t from = whence == SEEK_CUR ? Tell(memory) : Length(memory);
    const sf_count_t wanted = whence == SEEK_SET ? offset : from + offset;
    return Of(memory).position = std::clamp<sf_count_t>(wanted, 0, Length(memory));
  }
  static sf_count_t Read(void* target, sf_count_t count, void* memory) {
    const sf_count_t taken = std::min(count, Length(memory) - Tell(memory));
    std::memcpy(target, Of(memory).bytes.data() + Tell(memory), static_cast<std::size_t>(taken));
    Of(memory).position += taken;
    return taken;
  }
};

Recording ReadWave(const std::string& path, const std::vector<std::uint8_t>& bytes) {
  SF_INFO info{};
  SF_VIRTUAL_IO access{Memory::Length, Memory::Seek, Memory::Read, nullptr, Memory::Tell};
  Memory memory{bytes};
  const std::unique_ptr<SNDFILE, SoundFileCloser> file(sf_open_virtual(&access, SFM_READ, &info, &memory));
  if (file == nullptr) {
    throw RecordingError(path + ": no usable WAV file: " + sf_strerror(nullptr));
  }
  if (info.channels != 1) {
    throw RecordingError(path + ": " + std::to_string(info.channels) + " channels, expected 1");
  }
  Recording recording;
  if (info.samplerate != static_cast<int>(kVoiceRateHz)) {
    recording.warning = path + ": " + std::to_string(info.samplerate) + " Hz, taken as the remote's " +
                        std::to_string(static_cast<int>(kVoiceRateHz)) + " Hz";
  }
  double samples[4096];
  for (sf_count_t count = 0; (count = sf_read_double(file.get(), samples, std::size(samples))) > 0;) {
    for (sf_count_t i = 0; i < count; ++i) {
      const auto bits = static_cast<std::uint16_t>(ToSixteenBits(samples[i]));
      recording.bytes.push_back(static_cast<std::uint8_t>(bits & 0xFFU));
      recording.bytes.push_back(static_cast<std::uint8_t>(bits >> 8U));
    }
  }
  return recording;
}

}  // namespace

Recording ReadRecording(const std::string& path) {
  Recording recording;
  recording.bytes = ReadBytes(path);
  return IsWave(recording.bytes) ? ReadWave(path, recording.bytes) : recording;
}

std::vector<std::int16_t> SamplesOf(const Recording& recording) {
  std::vector<std::int16_t> samples(recording.bytes.size() / sizeof(std::int16_t));
  for (std::size_t n = 0; n < samples.size(); ++n) {
    const unsigned bits = recording.bytes[2 * n] | static_cast<unsigned>(recording.bytes[2 * n + 1]) << 8U;
    samples[n] = static_cast<std::int16_t>(bits);
  }
  return samples;
}

void Feed(const std::vector<std::uint8_t>& bytes, ReceiverRig& rig, const std::function<void(std::size_t)>& progress) {
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t count = std::min(kVoiceBlockBytes, bytes.size() - at);
    rig.Deliver(bytes.data() + at, static_cast<std::uint16_t>(count));
    at += count;
    progress(at);
  }
}

}  // namespace orvex::tools
