// Canonical PCM WAV files, in the layout that the player trusts: 12 bytes RIFF, the format chunk, the data chunk.
#include "testsound/wave_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "testsound/sound_design.h"

namespace orvex::tools {
namespace {

constexpr std::uint64_t kLargestFile = 64u << 20;
constexpr std::size_t kRiffBytes = 12;
constexpr std::size_t kFormatBytes = 24;  // chunk header and the 16 bytes of plain PCM
constexpr std::size_t kDataHeaderBytes = 8;
constexpr std::size_t kHeaderBytes = kRiffBytes + kFormatBytes + kDataHeaderBytes;
constexpr std::uint32_t kPlainFormatSize = 16;
constexpr std::uint16_t kChannels = 2;
constexpr std::uint16_t kBytesPerSample = 2;

std::string ReadBytes(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) {
    throw WaveFileError(path + ": cannot be read: " + error.message());
  }
  if (size > kLargestFile) {
    throw WaveFileError(path + ": " + std::to_string(size) + " bytes, expected at most " +
                        std::to_string(kLargestFile));
  }
  std::ifstream in(path, std::ios::binary);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  if (!in || (size > 0 && !in.read(bytes.data(), static_cast<std::streamsize>(size)))) {
    throw WaveFileError(path + ": cannot be read: " + std::strerror(errno));
  }
  return bytes;
}

std::uint32_t Little(const std::string& bytes, std::size_t offset, std::size_t width) {
  std::uint32_t value = 0;
  for (std::size_t n = width; n-- > 0;) {
    value = (value << 8) | static_cast<std::uint8_t>(bytes[offset + n]);
  }
  return value;
}

std::uint16_t Little16(const std::string& bytes, std::size_t offset) {
  return static_cast<std::uint16_t>(Little(bytes, offset, 2));
}

void Append(std::string& bytes, std::uint32_t value, std::size_t width) {
  for (std::size_t n = 0; n < width; ++n) {
    bytes.push_back(static_cast<char>((value >> (8 * n)) & 0xFF));
  }
}

std::string Serialise(const std::vector<std::int16_t>& samples) {
  const auto dataSize = static_cast<std::uint32_t>(samples.size() * kBytesPerSample);
  std::string bytes = "RIFF";
  Append(bytes, dataSize + kRiffBytes - 8 + kFormatBytes + kDataHeaderBytes, 4);
  bytes += "WAVEfmt ";
  Append(bytes, kPlainFormatSize, 4);
  Append(bytes, 1, 2);  // PCM
  Append(bytes, kChannels, 2);
  Append(bytes, kSoundRateHz, 4);
  Append(bytes, kSoundRateHz * kChannels * kBytesPerSample, 4);
  Append(bytes, kChannels * kBytesPerSample, 2);
  Append(bytes, 8 * kBytesPerSample, 2);
  bytes += "data";
  Append(bytes, dataSize, 4);
  for (const std::int16_t sample : samples) {
    Append(bytes, static_cast<std::uint16_t>(sample), kBytesPerSample);
  }
  return bytes;
}

void ReadFormat(const std::string& bytes, WaveFile& file) {
  file.riffId = bytes.substr(0, 4);
  file.riffSize = Little(bytes, 4, 4);
  file.waveId = bytes.substr(8, 4);
  file.formatId = bytes.substr(12, 4);
  file.formatSize = Little(bytes, 16, 4);
  file.formatTag = Little16(bytes, 20);
  file.channels = Little16(bytes, 22);
  file.sampleRate = Little(bytes, 24, 4);
  file.byteRate = Little(bytes, 28, 4);
  file.blockAlign = Little16(bytes, 32);
  file.bitsPerSample = Little16(bytes, 34);
}

void ReadSamples(const std::string& bytes, WaveFile& file) {
  const std::uint64_t there = std::min<std::uint64_t>(file.dataSize, file.fileSize - file.dataOffset);
  file.samples.resize(static_cast<std::size_t>(there / kBytesPerSample));
  std::size_t offset = static_cast<std::size_t>(file.dataOffset);
  for (std::int16_t& sample : file.samples) {
    sample = static_cast<std::int16_t>(Little16(bytes, offset));
    offset += kBytesPerSample;
  }
}

}  // namespace

WaveFile ReadWaveFile(const std::string& path) {
  std::string bytes = ReadBytes(path);
  WaveFile file;
  file.fileSize = bytes.size();
  file.dataOffset = file.fileSize;
  bytes.resize(std::max(bytes.size(), kHeaderBytes), '\0');
  ReadFormat(bytes, file);
  // A longer format chunk is skipped to its end; a shorter one cannot move the data chunk forward.
  const std::uint64_t extension = file.formatSize > kPlainFormatSize ? file.formatSize - kPlainFormatSize : 0;
  if (file.fileSize >= kHeaderBytes + extension) {
    const auto dataHeader = static_cast<std::size_t>(kRiffBytes + kFormatBytes + extension);
    file.dataId = bytes.substr(dataHeader, 4);
    file.dataSize = Little(bytes, dataHeader + 4, 4);
    file.dataOffset = dataHeader + kDataHeaderBytes;
    ReadSamples(bytes, file);
  }
  return file;
}

void WriteWaveFile(const OutputFile& file, const std::vector<std::int16_t>& samples) {
  file.Write([&](std::ostream& out) { out << Serialise(samples); });
}

}  // namespace orvex::tools
