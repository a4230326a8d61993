// The same samples give the same results on every machine: whole numbers to the last bit, magnitudes to 1e-9.
#include <gtest/gtest.h>
#include <json/json.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "orvex/sim/room.h"
#include "receiver/receiver_rig.h"
#include "testsound/generator.h"

namespace orvex::tools {
namespace {

using Samples = std::vector<std::int16_t>;

std::vector<std::uint8_t> LittleEndian(const Samples& samples) {
  std::vector<std::uint8_t> bytes;
  for (const std::int16_t sample : samples) {
    const auto bits = static_cast<std::uint16_t>(sample);
    bytes.push_back(static_cast<std::uint8_t>(bits & 0xFFU));
    bytes.push_back(static_cast<std::uint8_t>(bits >> 8U));
  }
  return bytes;
}

// FNV-1a over the samples as 16-bit little-endian.
std::string Digest(const Samples& samples) {
  std::uint64_t value = 0xcbf29ce484222325U;
  for (const std::uint8_t byte : LittleEndian(samples)) {
    value = (value ^ byte) * 0x100000001b3U;
  }
  std::ostringstream text;
  text.width(16);
  text.fill('0');
  text << std::hex << value;
  return text.str();
}

// See make_reference.
Json::Value Reference() {
  Json::Value reference;
  std::ifstream(ORVEX_VECTOR_REFERENCE) >> reference;
  return reference;
}

Samples Noise() {
  Samples samples;
  std::uint32_t state = 1;
  for (std::size_t n = 0; n < kVoiceBlockSamples; ++n) {
    state = state * 1664525U + 1013904223U;
    samples.push_back(static_cast<std::int16_t>(static_cast<std::int32_t>(state >> 20U) - 2048));
  }
  return samples;
}

Samples Square(unsigned int hz, int height) {
  Samples samples;
  for (unsigned int n = 0; n < kVoiceBlockSamples; ++n) {
    samples.push_back(static_cast<std::int16_t>(2 * (hz * n % 46545) < 46545 ? height : -height));
  }
  return samples;
}

Samples BlockNamed(const std::string& name) {
  Samples samples(kVoiceBlockSamples, 0);
  if (name == "noise") {
    return Noise();
  }
  if (name == "17 kHz") {
    return Square(17000, 12000);
  }
  if (name == "19 kHz") {
    return Square(19000, 300);
  }
  if (name == "full scale") {
    for (std::size_t n = 0; n < kVoiceBlockSamples; ++n) {
      samples[n] = n % 2 == 0 ? std::int16_t{32767} : std::int16_t{-32768};
    }
  } else {
    samples[0] = 1234;  // "click"
  }
  return samples;
}

struct Heard : OrvexReceiverObserver {
  void OnBlock(std::int32_t /*buffer*/, const ToneMagnitudes& magnitudes, const Levels& /*ambient*/) override {
    levels.push_back(magnitudes);
  }
  void OnPair(std::int32_t buffer, Tone /*tone*/, std::int32_t first, double /*differenceS*/) override {
    pairs.emplace_back(first, buffer);
  }

  std::vector<ToneMagnitudes> levels;
  std::vector<std::pair<std::int32_t, std::int32_t>> pairs;
};

Heard Hear(const Samples& recording) {
  Heard heard;
  ReceiverRig rig({&heard});
  const std::vector<std::uint8_t> bytes = LittleEndian(recording);
  for (std::size_t at = 0; at < bytes.size(); at += kVoiceBlockBytes) {
    rig.Deliver(bytes.data() + at, kVoiceBlockBytes);
  }
  return heard;
}

class Magnitudes : public testing::TestWithParam<const char*> {};

TEST_P(Magnitudes, AreThoseOfTheReference) {
  const Json::Value expected = Reference()["blocks"][GetParam()];
  const Samples block = BlockNamed(GetParam());
  ASSERT_EQ(expected["digest"].asString(), Digest(block));
  Samples recording(4 * kVoiceBlockSamples, 0);  // blocks that are not analysed
  recording.insert(recording.end(), block.begin(), block.end());
  const Heard heard = Hear(recording);
  ASSERT_EQ(1U, heard.levels.size());
  const ToneMagnitudes& levels = heard.levels.front();
  const std::vector<std::pair<const char*, double>> measured = {
      {"17000", levels.at17000}, {"17500", levels.at17500}, {"18000", levels.at18000}, {"19000", levels.at19000}};
  for (const auto& [hz, magnitude] : measured) {
    const double right = expected[hz].asDouble();
    EXPECT_NEAR(right, magnitude, 1e-9 * right) << hz << " Hz";
  }
}

INSTANTIATE_TEST_SUITE_P(Vectors, Magnitudes, testing::Values("click", "noise", "17 kHz", "19 kHz", "full scale"),
                         [](const auto& block) { return "Block" + std::to_string(block.index); });

TEST(Vectors, TestSoundsAreThoseOfTheReference) {
  SoundDesign small;
  small.leadInMs = 10.3;
  small.pairs = 2;
  small.spacingMs = 20.0;
  small.burstMs = 15.0;
  small.rampMs = 4.1;
  small.skewMs = 0.2;
  small.tailMs = 5.0;
  small.levelDbfs = -29.0;
  const Json::Value expected = Reference()["sounds"];
  EXPECT_EQ(expected["default"].asString(), Digest(GenerateSound(SoundDesign{})));
  EXPECT_EQ(expected["small"].asString(), Digest(GenerateSound(small)));
}

// Noise, echoes, reverberation and a microphone of another rate: what the model recorded on x86-64, and what the
// detector found in it.
struct Recorded {
  const char* name;
  double opticalLatencyMs;
  double rateErrorPpm;
  double rt60S;
  std::uint64_t seed;
  const char* digest;
  std::pair<std::int32_t, std::int32_t> pair;
};

const std::vector<Recorded> kRecorded = {
    {"OpticalLate", 20.0, 0.0, 0.3, 1, "7f5e7affa6227f22", {60, 63}},
    {"OpticalEarly", 0.0, 0.0, 0.6, 7, "f0b7a3f2c229b206", {60, 62}},
    {"FastMicrophone", 150.0, 400.0, 0.3, 0xFFFFFFFFFFFFFFFF, "0ca92ab9a743be39", {60, 71}},
};

class Recordings : public testing::TestWithParam<Recorded> {};

TEST_P(Recordings, AreThoseOfTheReference) {
  const Recorded& expected = GetParam();
  sim::RoomConfig config;
  config.optical.latencyMs = expected.opticalLatencyMs;
  config.optical.reflections = {{3.7, -9.0}, {11.0, -14.0}};
  config.rateErrorPpm = expected.rateErrorPpm;
  config.tv.rt60S = expected.rt60S;
  config.seed = expected.seed;
  sim::Room room(config);
  room.SetSpdifDelayMs(100.0);
  const Samples sound = GenerateSound(SoundDesign{});
  room.Play(std::chrono::milliseconds(700), sound.data(), sound.size() / 2);
  room.StartRecording(sim::Time{});
  Samples recording(100 * kVoiceBlockSamples);
  room.Record(recording.data(), recording.size());
  EXPECT_EQ(expected.digest, Digest(recording));
  const Heard heard = Hear(recording);
  ASSERT_FALSE(heard.pairs.empty());
  EXPECT_EQ(expected.pair, heard.pairs.front());
}

INSTANTIATE_TEST_SUITE_P(Vectors, Recordings, testing::ValuesIn(kRecorded),
                         [](const auto& recorded) { return recorded.param.name; });

}  // namespace
}  // namespace orvex::tools
