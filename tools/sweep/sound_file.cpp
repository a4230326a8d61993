// Reads a recording and brings it to the microphone's rate.
#include <samplerate.h>
#include <sndfile.h>

#include <cmath>
#include <memory>
#include <stdexcept>

#include "orvex/platform/remote_voice.h"
#include "sweep/disturbance.h"

namespace orvex::tools {
namespace {

struct SoundFileCloser {
  void operator()(SNDFILE* file) const { sf_close(file); }
};

Sound Convert(const std::string& path, const Sound& samples, double ratio) {
  Sound converted(static_cast<std::size_t>(std::ceil(static_cast<double>(samples.size()) * ratio)));
  SRC_DATA data{};
  data.data_in = samples.data();
  data.input_frames = static_cast<long>(samples.size());
  data.data_out = converted.data();
  data.output_frames = static_cast<long>(converted.size());
  data.src_ratio = ratio;
  const int error = src_simple(&data, SRC_SINC_MEDIUM_QUALITY, 1);
  if (error != 0) {
    throw std::runtime_error(path + ": cannot be brought to the microphone's rate: " + src_strerror(error));
  }
  if (data.output_frames_gen <= 0) {
    throw std::runtime_error(path + ": " + std::to_string(samples.size()) +
                             " samples, expected a sound of some length");
  }
  converted.resize(static_cast<std::size_t>(data.output_frames_gen));
  return converted;
}

}  // namespace

Sound ReadSound(const std::string& path) {
  SF_INFO info{};
  const std::unique_ptr<SNDFILE, SoundFileCloser> file(sf_open(path.c_str(), SFM_READ, &info));
  if (file == nullptr) {
    throw std::runtime_error(path + ": cannot be read as a sound file: " + sf_strerror(nullptr));
  }
  if (info.channels != 1 || info.frames <= 0) {
    throw std::runtime_error(path + ": " + std::to_string(info.channels) + " channels of " +
                             std::to_string(info.frames) + " frames, expected 1 channel with sound");
  }
  Sound samples(static_cast<std::size_t>(info.frames));
  samples.resize(static_cast<std::size_t>(sf_read_float(file.get(), samples.data(), info.frames)));
  return Convert(path, samples, kVoiceRateHz / info.samplerate);
}

}  // namespace orvex::tools
