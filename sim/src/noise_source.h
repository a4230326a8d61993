// The microphone's noise: white noise, and a recording that is repeated without end.
#pragma once

#include <cstddef>
#include <random>
#include <vector>

#include <boost/random/normal_distribution.hpp>

#include "orvex/sim/room_config.h"

namespace orvex::sim {

class NoiseSource {
public:
  explicit NoiseSource(const RoomConfig& config);

  // Full scale 1.0; throws as Room::SetNoise() does.
  void SetRecording(const std::vector<float>& samples, double rateHz);
  // Adds the next `count` samples of noise; full scale is 32768.
  void AddTo(float* samples, std::size_t count);

private:
  void AddWhite(float* samples, std::size_t count);
  void AddRecording(float* samples, std::size_t count);

  double m_RateHz;
  float m_WhiteRms = 0.0F;  // 0: none
  float m_RecordingGain;
  std::mt19937_64 m_Random;
  boost::random::normal_distribution<float> m_Normal;
  std::vector<float> m_Recording;  // at the microphone's rate
  std::size_t m_Position = 0;      // of the recording's next sample
};

}  // namespace orvex::sim
