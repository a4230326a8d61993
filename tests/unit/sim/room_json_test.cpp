// Rooms as JSON: round trip, defaults, and errors that name the bad value and its key.
#include "orvex/sim/room_json.h"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvex::sim::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

// The text of the error, empty when there is none.
std::string ErrorOf(const std::string& text) {
  try {
    ParseRoom(text, "living/room.json");
  } catch (const RoomError& error) {
    return error.what();
  }
  return "";
}

RoomConfig MakeUnusualRoom() {
  RoomConfig config;
  config.tv = {1.1, -2.2, 3.3, {{4.4, -5.5}, {6.6, -7.7}}, 0.1 + 0.2, 8.8};
  config.optical = {9.9, 10.0, 11.1, {}, 0.0, -12.2};
  config.opticalMuted = true;
  config.opticalLockMs = 13.3;
  config.microphoneRateHz = 48000.0;
  config.rateErrorPpm = -14.4;
  config.noiseDbfs.reset();
  config.noiseFile = "noise \"quoted\" \u00e4 \xff.wav";
  config.noiseFileGainDb = -15.5;
  config.voiceLatencyMs = 16.6;
  config.voiceJitterMs = 17.7;
  config.voiceLossProbability = 1.0 / 3.0;
  config.voiceWindowMs = 18.8;
  config.silentAfterMs = 19.9;
  config.seed = 18446744073709551615U;
  return config;
}

TEST(RoomJsonTest, WhatWasWrittenIsReadBack) {
  EXPECT_EQ(ParseRoom(RoomToJson(RoomConfig()), "room"), RoomConfig());
  EXPECT_EQ(ParseRoom(RoomToJson(MakeUnusualRoom()), "room"), MakeUnusualRoom());
}

TEST(RoomJsonTest, TheDefaultRoomIsWrittenInFullAndInShortNumbers) {
  const std::string text = RoomToJson(RoomConfig());
  EXPECT_THAT(text, AllOf(HasSubstr("\"rt60_s\" : 0.3\n"), HasSubstr("\"noise_dbfs\" : -70"),
                          HasSubstr("\"silent_after_ms\" : \"none\""), HasSubstr("\"seed\" : 1")));
  EXPECT_EQ(text.back(), '\n');
}

TEST(RoomJsonTest, MissingKeysHaveTheirDefaults) {
  EXPECT_EQ(ParseRoom("{}", "room"), RoomConfig());
  RoomConfig expected;
  expected.tv.distanceM = 4.5;
  expected.opticalMuted = true;
  expected.noiseDbfs.reset();
  expected.optical.reflections = {{3.0, -9.0}};
  EXPECT_EQ(ParseRoom(R"({ "tv": { "distance_m": 4.5 },
                           "optical": { "muted": true, "reflections": [ { "gain_db": -9, "delay_ms": 3 } ] },
                           "microphone": { "noise_dbfs": "none" } })",
                      "room"),
            expected);
}

TEST(RoomJsonTest, TheLimitsThemselvesAreAllowed) {
  EXPECT_EQ(ErrorOf(R"({"tv": {"distance_m": 0}, "voice": {"loss_probability": 1}})"), "");
  EXPECT_EQ(ErrorOf(R"({"tv": {"distance_m": 1000}, "voice": {"loss_probability": 0}})"), "");
}

struct ErrorCase {
  const char* name;
  const char* text;
  const char* key;
  const char* value;
  const char* expected;
};

class RoomJsonErrorTest : public testing::TestWithParam<ErrorCase> {};

TEST_P(RoomJsonErrorTest, NamesFileKeyValueAndWhatWasExpected) {
  const ErrorCase& error = GetParam();
  EXPECT_EQ(ErrorOf(error.text),
            std::string("living/room.json: \"") + error.key + "\" is " + error.value + ", expected " + error.expected);
}

constexpr const char* kDistance = "a number from 0 to 1000";
constexpr const char* kSeed = "an integer from 0 to 18446744073709551615";
constexpr const char* kRoomKeys = "one of: microphone, optical, seed, tv, voice";

INSTANTIATE_TEST_SUITE_P(
    Rooms, RoomJsonErrorTest,
    testing::Values(
        ErrorCase{"TooSmall", R"({"tv": {"distance_m": -0.5}})", "tv.distance_m", "-0.5", kDistance},
        ErrorCase{"TooLarge", R"({"optical": {"distance_m": 1e300}})", "optical.distance_m", "1.0000000000000001e+300",
                  kDistance},
        ErrorCase{"NoNumber", R"({"tv": {"distance_m": "2"}})", "tv.distance_m", "\"2\"", kDistance},
        ErrorCase{"BooleanForNumber", R"({"tv": {"distance_m": true}})", "tv.distance_m", "true", kDistance},
        ErrorCase{"NullForNumber", R"({"tv": {"distance_m": null}})", "tv.distance_m", "null", kDistance},
        ErrorCase{"NegativeRange", R"({"tv": {"gain_db": 41}})", "tv.gain_db", "41", "a number from -200 to 40"},
        ErrorCase{"LargeRange", R"({"voice": {"window_ms": 0}})", "voice.window_ms", "0", "a number from 1 to 1000000"},
        ErrorCase{"NotNone", R"({"microphone": {"noise_dbfs": "nothing"}})", "microphone.noise_dbfs", "\"nothing\"",
                  "a number from -200 to 0 or \"none\""},
        ErrorCase{"NoBoolean", R"({"optical": {"muted": 1}})", "optical.muted", "1", "true or false"},
        ErrorCase{"NoString", R"({"microphone": {"noise_file": 3}})", "microphone.noise_file", "3", "a string"},
        ErrorCase{"NegativeSeed", R"({"seed": -1})", "seed", "-1", kSeed},
        ErrorCase{"SeedTooLarge", R"({"seed": 18446744073709551616})", "seed", "1.8446744073709552e+19", kSeed},
        ErrorCase{"SeedWithFraction", R"({"seed": 1.5})", "seed", "1.5", kSeed},
        ErrorCase{"UnknownSection", R"({"tvs": {}})", "tvs", "an unknown key with the value {}", kRoomKeys},
        ErrorCase{"EmptyKey", R"({"": 1})", "", "an unknown key with the value 1", kRoomKeys},
        ErrorCase{"UnknownKey", R"({"voice": {"muted": false}})", "voice.muted", "an unknown key with the value false",
                  "one of: jitter_ms, latency_ms, loss_probability, silent_after_ms, window_ms"},
        ErrorCase{"SectionNoObject", R"({"tv": [1, 2]})", "tv", "[1,2]", "an object"},
        ErrorCase{"ReflectionsNoList", R"({"tv": {"reflections": {}}})", "tv.reflections", "{}",
                  "a list of at most 64 reflections"},
        ErrorCase{"ReflectionNoObject", R"({"tv": {"reflections": [7]}})", "tv.reflections[0]", "7",
                  "an object with delay_ms and gain_db"},
        ErrorCase{"ReflectionOutOfRange", R"({"tv": {"reflections": [{}, {"delay_ms": 1001}]}})",
                  "tv.reflections[1].delay_ms", "1001", "a number from 0 to 1000"},
        ErrorCase{"ReflectionUnknownKey", R"({"tv": {"reflections": [{"gain": 1}]}})", "tv.reflections[0].gain",
                  "an unknown key with the value 1", "one of: delay_ms, gain_db"}),
    [](const auto& instance) { return instance.param.name; });

TEST(RoomJsonTest, TooManyReflectionsAreRefused) {
  std::string list = "{}";
  for (int i = 0; i < 64; ++i) {
    list += ", {}";
  }
  EXPECT_THAT(ErrorOf(R"({"tv": {"reflections": [)" + list + "]}}"),
              AllOf(HasSubstr("tv.reflections"), HasSubstr("at most 64")));
}

TEST(RoomJsonTest, TextThatIsNoJsonObjectIsRefusedWithLineAndColumn) {
  EXPECT_THAT(ErrorOf("{\n \"tv\": { \"distance_m\": }\n}"),
              AllOf(HasSubstr("living/room.json: no valid JSON, expected one object: "), HasSubstr("Line 2, Column")));
  for (const char* text : {"", "{", "{} {}", "{\"seed\": NaN}", "{\"seed\": 1, \"seed\": 2}", "{\"seed\": 1,}",
                           "{\"tv\": {\"distance_m\": Infinity}}", "{\"tv\": {\"distance_m\": 1e999}}", "3", "[]"}) {
    EXPECT_THAT(ErrorOf(text), HasSubstr("living/room.json: ")) << text;
  }
  EXPECT_THAT(ErrorOf(std::string(100000, '[')), HasSubstr("living/room.json: no valid JSON"));
  EXPECT_THAT(ErrorOf(std::string("{\"seed\": 1}\0x", 13)), HasSubstr("living/room.json: no valid JSON"));
}

TEST(RoomJsonTest, ALongValueIsCutInTheError) {
  EXPECT_LT(ErrorOf("{\"seed\": \"" + std::string(10000, 'x') + "\"}").size(), 200U);
}

TEST(RoomConfigTest, ANumberGoesByItsNameInJson) {
  EXPECT_EQ(20000.0, RangeOfNumber("microphone.rate_hz").minimum);
  EXPECT_EQ(96000.0, RangeOfNumber("microphone.rate_hz").maximum);
  RoomConfig config;
  SetNumber(config, "optical.lock_ms", 33.0);
  SetNumber(config, "microphone.noise_dbfs", -44.0);
  RoomConfig expected;
  expected.opticalLockMs = 33.0;
  expected.noiseDbfs = -44.0;
  EXPECT_EQ(config, expected);
  for (const char* const name : {"lock_ms", "optical.muted", "seed", ""}) {
    EXPECT_THROW(RangeOfNumber(name), std::out_of_range) << name;
  }
}

TEST(RoomConfigTest, ValuesThatJsonCannotHoldAreRefusedToo) {
  RoomConfig config;
  config.tv.gainDb = std::nan("");
  EXPECT_THROW(CheckRoom(config, "room"), RoomError);
  config = RoomConfig();
  config.noiseDbfs = -std::numeric_limits<double>::infinity();
  EXPECT_THROW(CheckRoom(config, "room"), RoomError);
  config = RoomConfig();
  config.optical.reflections = {{std::nan(""), 0.0}};
  EXPECT_THROW(CheckRoom(config, "room"), RoomError);
  config.optical.reflections.assign(kMaxReflections + 1, {});
  EXPECT_THROW(CheckRoom(config, "room"), RoomError);
  EXPECT_NO_THROW(CheckRoom(MakeUnusualRoom(), "room"));
}

}  // namespace
}  // namespace orvex::sim::test
