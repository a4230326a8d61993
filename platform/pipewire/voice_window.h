// How long the microphone goes on without being told to.
#pragma once

namespace orvex::pipewire {

// The service says "go on" every 4.1 s. One that hangs does not keep the microphone on.
constexpr int kVoiceWindowMs = 6000;

// For tests: from the next start command on.
void SetVoiceWindow(int windowMs);

}  // namespace orvex::pipewire
