// What is wrong with a recording, in plain words.
#pragma once

#include <string>

#include "fine/fine_reading.h"
#include "pc/living_room.h"

namespace orvex::tools {

// Not one sample differs from 0, as of a microphone that is muted.
bool IsDigitalSilence(const VoiceSamples& heard);

// That sound was lost, and what to do.
std::string LossesInWords(std::uint64_t losses);

// Why the test sound could not be read in what was heard, and what to do. `losses`: as LivingRoom::CountLosses().
std::string WhyUnread(const VoiceSamples& heard, const fine::Reading& reading, std::uint64_t losses);

}  // namespace orvex::tools
