// Reads the headers byte by byte, as they may be wrong, and the samples with libsndfile.
#include "testsound/wave_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <system_error>

#include <sndfile.hh>

namespace orvex::tools {
namespace {

constexpr std::uint64_t kLargestFile = 64u << 20;
constexpr std::size_t kRiffBytes = 12;
constexpr std::size_t kFormatBytes = 24;  // chunk header and the 16 bytes of plain PCM
constexpr std::size_t kDataHeaderBytes = 8;
constexpr std::uint32_t kPlainFormatSize = 16;
constexpr std::uint16_t kBytesPerSample = 2;
static_assert(kWaveHeaderBytes == kRiffBytes + kFormatBytes + kDataHeaderBytes);

[[noreturn]] void FailToRead(const std::string& path, const std::string& cause) {
  throw WaveFileError(path + ": cannot be read: " + cause);
}

std::uint64_t SizeOf(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) {
    FailToRead(path, error.message());
  }
  if (size > kLargestFile) {
    throw WaveFileError(path + ": " + std::to_string(size) + " bytes, expected at most " +
                        std::to_string(kLargestFile));
  }
  return size;
}

// `count` bytes from `offset` on; those after the end of the file are zero.
std::string ReadBytes(const std::string& path, std::uint64_t offset, std::size_t count) {
  std::string bytes(count, '\0');
  std::ifstream in(path, std::ios::binary);
  in.seekg(static_cast<std::streamoff>(offset));
  if (!in || !(in.read(bytes.data(), static_cast<std::streamsize>(count)) || in.eof())) {
    FailToRead(path, std::strerror(errno));
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

std::string Serialise(const std::vector<std::int16_t>& samples, const WaveFormat& format) {
  const auto dataSize = static_cast<std::uint32_t>(samples.size() * kBytesPerSample);
  std::string bytes = "RIFF";
  Append(bytes, dataSize + kRiffBytes - 8 + kFormatBytes + kDataHeaderBytes, 4);
  bytes += "WAVEfmt ";
  Append(bytes, kPlainFormatSize, 4);
  Append(bytes, 1, 2);  // PCM
  const std::uint32_t frameBytes = std::uint32_t{format.channels} * kBytesPerSample;
  Append(bytes, format.channels, 2);
  Append(bytes, format.rateHz, 4);
  Append(bytes, format.rateHz * frameBytes, 4);
  Append(bytes, frameBytes, 2);
  Append(bytes, 8 * kBytesPerSample, 2);
  bytes += "data";
  Append(bytes, dataSize, 4);
  for (const std::int16_t sample : samples) {
    Append(bytes, static_cast<std::uint16_t>(sample), kBytesPerSample);
  }
  return bytes;
}

void ParseFormat(const std::string& bytes, WaveHeader& header) {
  header.riffId = bytes.substr(0, 4);
  header.riffSize = Little(bytes, 4, 4);
  header.waveId = bytes.substr(8, 4);
  header.formatId = bytes.substr(12, 4);
  header.formatSize = Little(bytes, 16, 4);
  header.formatTag = Little16(bytes, 20);
  header.channels = Little16(bytes, 22);
  header.sampleRate = Little(bytes, 24, 4);
  header.byteRate = Little(bytes, 28, 4);
  header.blockAlign = Little16(bytes, 32);
  header.bitsPerSample = Little16(bytes, 34);
}

}  // namespace

WaveHeader ReadWaveHeader(const std::string& path) {
  WaveHeader header;
  header.fileSize = SizeOf(path);
  header.dataOffset = header.fileSize;
  ParseFormat(ReadBytes(path, 0, kRiffBytes + kFormatBytes), header);
  // A longer format chunk is skipped to its end; a shorter one cannot move the data chunk forward.
  const std::uint64_t extension = std::max(header.formatSize, kPlainFormatSize) - kPlainFormatSize;
  if (header.fileSize >= kWaveHeaderBytes + extension) {
    const std::uint64_t dataHeader = kRiffBytes + kFormatBytes + extension;
    const std::string bytes = ReadBytes(path, dataHeader, kDataHeaderBytes);
    header.dataId = bytes.substr(0, 4);
    header.dataSize = Little(bytes, 4, 4);
    header.dataOffset = dataHeader + kDataHeaderBytes;
  }
  return header;
}

std::vector<std::int16_t> ReadSamples(const std::string& path) {
  SndfileHandle file(path);
  if (file.error() != SF_ERR_NO_ERROR) {
    FailToRead(path, file.strError());
  }
  std::vector<std::int16_t> samples(static_cast<std::size_t>(file.frames() * file.channels()));
  samples.resize(static_cast<std::size_t>(file.read(samples.data(), static_cast<sf_count_t>(samples.size()))));
  return samples;
}

void WriteWaveFile(const OutputFile& file, const std::vector<std::int16_t>& samples, const WaveFormat& format) {
  file.Write([&](std::ostream& out) { out << Serialise(samples, format); });
}

}  // namespace orvex::tools
