// Plays a sound to a sink, once.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "pipewire/client/connection.h"

namespace orvex::tools {

// Made, used and destroyed with the loop locked.
class SoundPlayer {
public:
  // `samples`: interleaved stereo at kSoundRateHz. `onChange`: what the operations below answer may have changed; on
  // the loop's thread. Throws CommandError.
  SoundPlayer(const pipewire::Connection& connection, const std::string& sink, std::vector<std::int16_t> samples,
              std::function<void()> onChange);
  ~SoundPlayer();
  SoundPlayer(const SoundPlayer&) = delete;
  SoundPlayer& operator=(const SoundPlayer&) = delete;

  // Everything has been handed to the sink.
  bool HasPlayed() const;
  // Not empty: it plays no more, and why.
  const std::string& GetProblem() const;

private:
  struct State;
  std::unique_ptr<State> m_State;
};

}  // namespace orvex::tools
