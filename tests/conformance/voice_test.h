// The fixture of the voice channel's tests: a receiver on a television that has a remote.
#pragma once

#include "conformance/port_test.h"
#include "conformance/voice_listener.h"

namespace orvex::conformance {

// In which a remote that still sends would have delivered a dozen blocks.
constexpr double kLongSilenceMs = 12 * kVoiceBlockMs;

class VoiceTest : public PortTest {
protected:
  void SetUp() override { ORVEX_NEEDS(kVoice); }

  std::function<void()> RegisterAndStart() {
    return [this] {
      EXPECT_EQ(listener.Register(), kVoiceDone);
      startedAtMs = Port().NowMs();
      EXPECT_EQ(StartVoice(), kVoiceDone);
    };
  }
  static std::function<bool()> Heard(const VoiceListener& heard, std::size_t count) {
    return [&heard, count] { return heard.Count() >= count; };
  }
  std::function<bool()> Heard(std::size_t count) const { return Heard(listener, count); }

  VoiceListener listener{Port()};
  double startedAtMs = 0.0;
};

}  // namespace orvex::conformance
