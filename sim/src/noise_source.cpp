// Converts the recording to the microphone's rate once, when it is set; repeating it is then an addition per sample.
#include "sim/src/noise_source.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

#include "sim/src/random.h"
#include "sim/src/rate_converter.h"
#include "sim/src/units.h"

namespace orvex::sim {
namespace {

constexpr double kFullScale = 32768.0;
constexpr double kMinRateHz = 1000.0;
constexpr double kMaxRateHz = 1000000.0;
constexpr float kMaxSample = 1000.0F;

void CheckRecording(const std::vector<float>& samples, double rateHz) {
  if (!(rateHz >= kMinRateHz && rateHz <= kMaxRateHz)) {
    throw std::invalid_argument("noise: the rate is " + std::to_string(rateHz) + " Hz, expected 1000 to 1000000");
  }
  const auto bad =
      std::find_if(samples.begin(), samples.end(), [](float sample) { return !(std::abs(sample) <= kMaxSample); });
  if (bad != samples.end()) {
    throw std::invalid_argument("noise: sample " + std::to_string(bad - samples.begin()) + " is " +
                                std::to_string(*bad) + ", expected -1000 to 1000");
  }
}

}  // namespace

NoiseSource::NoiseSource(const RoomConfig& config)
    : m_RateHz(ActualMicrophoneRateHz(config)),
      m_RecordingGain(static_cast<float>(AmplitudeOfDb(config.noiseFileGainDb) * kFullScale)),
      m_Random(MakeRandom(config.seed, RandomUse::kNoise)) {
  if (config.noiseDbfs) {
    m_WhiteRms = static_cast<float>(AmplitudeOfDb(*config.noiseDbfs) * kFullScale);
  }
}

void NoiseSource::SetRecording(const std::vector<float>& samples, double rateHz) {
  CheckRecording(samples, rateHz);
  m_Recording = rateHz == m_RateHz ? samples : ConvertRate(samples, m_RateHz / rateHz);
  m_Position = 0;
}

void NoiseSource::AddTo(float* samples, std::size_t count) {
  if (m_WhiteRms > 0.0F) {
    AddWhite(samples, count);
  }
  if (!m_Recording.empty()) {
    AddRecording(samples, count);
  }
}

void NoiseSource::AddWhite(float* samples, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    samples[i] += m_WhiteRms * m_Normal(m_Random);
  }
}

void NoiseSource::AddRecording(float* samples, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    samples[i] += m_RecordingGain * m_Recording[m_Position];
    m_Position = m_Position + 1 == m_Recording.size() ? 0 : m_Position + 1;
  }
}

}  // namespace orvex::sim
