// What a microphone hears of two outputs in one room.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "pipewire/client/filter_node.h"

namespace orvex::integration {

struct RoomWays {
  double referenceMs = 10.0;  // until the output's sound has arrived at the microphone
  double delayedMs = 10.0;
  float noise = 0.004F;  // largest amplitude; 0: digital silence between the sounds
  double humHz = 0.0;    // of a tone that is in the room all the time; 0: there is none
  int microphoneHz = 48000;
  bool isProgrammePlaying = true;  // so that the outputs run; else they rest while nothing plays
};

// Inputs: the reference output, the delayed output. Output: the microphone.
class RoomSound : public pipewire::SoundProcessor {
public:
  explicit RoomSound(const RoomWays& ways);
  void OnCycle(const pipewire::Cycle& cycle) override;

private:
  // Takes one sample and gives the one that came so much earlier.
  class Way {
  public:
    explicit Way(double ms);
    float Pass(float sample);

  private:
    std::vector<float> m_Ring;
    std::size_t m_Position = 0;
  };

  const double m_HumHz;
  Way m_Reference;
  Way m_Delayed;
  std::minstd_rand m_Random;
  std::uniform_real_distribution<float> m_Noise;
};

}  // namespace orvex::integration
