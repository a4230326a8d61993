// The reading's own reason comes last: what a person can change comes first.
#include "pc/microphone_check.h"

#include <fmt/core.h>

#include <algorithm>

namespace orvex::tools {
namespace {

// Of a recording of the whole sound; clean bursts do not reach full scale at all.
constexpr double kOverdriven = 0.002;

double ClippedShare(const VoiceSamples& heard) {
  const auto clipped = std::count_if(heard.begin(), heard.end(),
                                     [](std::int16_t sample) { return sample == INT16_MAX || sample <= -INT16_MAX; });
  return heard.empty() ? 0.0 : static_cast<double>(clipped) / static_cast<double>(heard.size());
}

// Of a recording in which not both tones are heard.
std::string MissingToneInWords(const std::array<bool, 2>& isHeard) {
  const auto [reference, delayed] = isHeard;
  if (reference) {
    return "17 kHz is heard from the reference output, 19 kHz from the delayed output is not: is the delayed output "
           "switched on and loud enough, and does the microphone reach 19 kHz? Many headsets end at 8 kHz";
  }
  if (delayed) {
    return "19 kHz is heard from the delayed output, 17 kHz from the reference output is not: is the reference output "
           "switched on and loud enough?";
  }
  return "nothing of the test sound is heard: are both outputs switched on and loud enough, and does the microphone "
         "reach 19 kHz? Many headsets end at 8 kHz";
}

}  // namespace

std::string LossesInWords(std::uint64_t losses) {
  return fmt::format("the computer was too busy and lost sound {}: let it finish what it does, and try again",
                     losses == 1 ? "once" : fmt::format("{} times", losses));
}

bool IsDigitalSilence(const VoiceSamples& heard) {
  return std::all_of(heard.begin(), heard.end(), [](std::int16_t sample) { return sample == 0; });
}

std::string WhyUnread(const VoiceSamples& heard, const fine::Reading& reading, std::uint64_t losses) {
  if (IsDigitalSilence(heard)) {
    return "the microphone gives digital silence: switch it on, or take it out of mute";
  }
  if (const double share = ClippedShare(heard); share > kOverdriven) {
    return fmt::format("the microphone is overdriven, {:.1f} % of what it heard is at full scale: turn its volume down",
                       100.0 * share);
  }
  if (!reading.isHeard[0] || !reading.isHeard[1]) {
    return MissingToneInWords(reading.isHeard) + (losses > 0 ? "; besides, " + LossesInWords(losses) : "");
  }
  return reading.reason + ": " +
         (losses > 0 ? LossesInWords(losses) : "turn the outputs up, or put the microphone where both are heard well");
}

}  // namespace orvex::tools
