#include "virtual/noise_file.h"

#include <sndfile.h>

#include <memory>
#include <stdexcept>

namespace orvex::virtual_tv {
namespace {

constexpr sf_count_t kMaximumNoiseSamples = sf_count_t{1} << 26U;  // 20 minutes of stereo at 48000 Hz

}  // namespace

NoiseFile ReadNoiseFile(const std::string& path) {
  SF_INFO info{};
  const std::unique_ptr<SNDFILE, decltype(&sf_close)> file(sf_open(path.c_str(), SFM_READ, &info), &sf_close);
  if (!file) {
    throw std::runtime_error("noise_file \"" + path + "\": expected a sound file: " + sf_strerror(nullptr));
  }
  if (info.frames <= 0 || info.frames > kMaximumNoiseSamples / info.channels) {
    throw std::runtime_error("noise_file \"" + path + "\": " + std::to_string(info.frames) + " frames of " +
                             std::to_string(info.channels) + " channels: expected 1 to " +
                             std::to_string(kMaximumNoiseSamples) + " samples");
  }
  const auto channels = static_cast<std::size_t>(info.channels);
  std::vector<float> interleaved(static_cast<std::size_t>(info.frames) * channels);
  const auto frames = static_cast<std::size_t>(sf_readf_float(file.get(), interleaved.data(), info.frames));
  NoiseFile noise{std::vector<float>(frames), static_cast<double>(info.samplerate)};
  for (std::size_t sample = 0; sample < frames * channels; ++sample) {
    noise.samples[sample / channels] += interleaved[sample] / static_cast<float>(channels);
  }
  return noise;
}

}  // namespace orvex::virtual_tv
