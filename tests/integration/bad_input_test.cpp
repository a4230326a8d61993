// Files that are missing, broken or unfit: a clear line that names them, no crash, the delay as it was.
#include <signal.h>

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/expectation.h"
#include "testsound/wave_file.h"

namespace orvex::integration {
namespace {

using testing::HasSubstr;

constexpr char kSound[] = "usr/apps/com.norvel.tv.orvex-service/res/sound/LR_test_sample_17_19.wav";

struct RoomRow {
  const char* name;
  std::string room;
  const char* complaint;
};

// Without a room there is no remote control that could be switched on.
TEST(BadInput, ABadRoomIsNamedAndEndsTheRun) {
  const std::vector<RoomRow> rows{
      {"broken", "{\"tv\": {", "{s}/room.json: no valid JSON, expected one object: {s}"},
      {"empty", "", "{s}/room.json: no valid JSON, expected one object: {s}"},
      {"list", "[]", "{s}/room.json: the text is [], expected a JSON object"},
      {"unknown key", R"({"walls": 4})",
       "{s}/room.json: \"walls\" is an unknown key with the value 4, expected one of: {s}"},
      {"out of range", R"({"tv": {"latency_ms": -1}})",
       "{s}/room.json: \"tv.latency_ms\" is -1, expected a number from 0 to 10000"},
      {"noise missing", R"({"microphone": {"noise_file": "none.wav"}})",
       "noise_file \"{s}/none.wav\": expected a sound file: {s}"},
      {"noise is no sound", R"({"microphone": {"noise_file": "room.json"}})",
       "noise_file \"{s}/room.json\": expected a sound file: {s}"},
  };
  std::vector<ExpectedRun> runs;
  for (const RoomRow& row : rows) {
    Expectation expectation = EndedWith("bt_fail");
    expectation.hostLines = {std::string("E2 orvex-host: ") + row.complaint +
                             "; there is no room, so no remote control is connected"};
    runs.push_back({{row.name, WithFile("room.json", row.room), {}, {}}, expectation});
  }
  PerformAndCheck(runs);
}

struct SoundRow {
  const char* name;
  Preparation prepare;
  std::string buffer;  // bytes that the header promises
};

std::string WholeSound() {
  return ReadWholeFile(std::filesystem::path(ORVEX_BUILT_ROOT) / kSound);
}

// The chunk that a careless editor leaves between format and data.
std::string WithForeignChunk() {
  std::string sound = WholeSound();
  sound.insert(36, std::string("LIST\x0A\0\0\0INFOabcdef", 18));
  return sound;
}

std::string CutOff() {
  constexpr std::size_t kHeaderBytes = 44;
  return WholeSound().substr(0, kHeaderBytes + 4000);
}

// A sound that the service has no reason to refuse, without a tone.
void PutSilence(const TestTelevision& television) {
  television.WriteFile(kSound, "");
  tools::WriteWaveFile(tools::OutputFile(television.PathOf(kSound).string()), std::vector<std::int16_t>(2 * 9600, 0));
}

TEST(BadInput, AnUnfitTestSoundEndsTheRunWithoutADifference) {
  const std::string promised = std::to_string(WholeSound().size() - 44);
  const std::vector<SoundRow> rows{
      {"missing", LeaveAsItIs, "0"},
      {"empty", WithFile(kSound, ""), "0"},
      {"text", WithFile(kSound, "this is no sound but a line of text that is longer than a header is\n"), "0"},
      {"header only", WithFile(kSound, WholeSound().substr(0, 44)), promised},
      {"cut off", WithFile(kSound, CutOff()), promised},
      {"foreign chunk", WithFile(kSound, WithForeignChunk()), "10"},
      {"silence", PutSilence, "38400"},
  };
  std::vector<ExpectedRun> runs;
  for (const SoundRow& row : rows) {
    Expectation expectation = EndedWith("diff_fail", 2);
    expectation.logged = {"I0 buffer length " + row.buffer};
    runs.push_back({{row.name, row.prepare, {}, {{"ORVEX_RESOURCES", "/nonexistent"}}}, expectation});
  }
  PerformAndCheck(runs);
}

// The sound on the television's own file system comes before the build's.
TEST(BadInput, AFitSoundWithAnExtendedFormatIsPlayed) {
  const auto prepare = [](const TestTelevision& television) {
    std::string sound = WholeSound();
    sound[16] = 18;
    sound.insert(36, 2, '\0');
    television.WriteFile(kSound, sound);
  };
  const Observation observation = Perform({"18-byte format", prepare, {}, {{"ORVEX_RESOURCES", "/nonexistent"}}});
  Check(observation, DifferenceApplied());
}

TEST(BadInput, ATelevisionThatCannotBeMadeIsNamedAndNoRunBegins) {
  const TestTelevision television;
  television.WriteFile("file", "");
  std::vector<Scenario> scenarios;
  for (const std::string& place : {television.PathOf("file").string() + "/tv", std::string("/proc/nothing/tv")}) {
    scenarios.push_back({place, LeaveAsItIs, {}, {{"ORVEX_TV", place}}});
  }
  for (const Observation& observation : Perform(scenarios)) {
    SCOPED_TRACE(observation.name);
    EXPECT_EQ("exit code 4", Describe(observation.ending));
    EXPECT_THAT(observation.output,
                HasSubstr("orvex-host: there is no television: cannot make the directory " + observation.name + ": "));
    EXPECT_THAT(observation.output, testing::Not(HasSubstr("Orvex Service Create!")));
    EXPECT_TRUE(observation.lines.empty());
    EXPECT_EQ(100, observation.delayMs);  // of the television beside it, which was not meant
  }
}

struct ValueRow {
  const char* name;
  const char* content;
  const char* complaint;
};

// A value that is no value counts as one that cannot be read.
TEST(BadInput, ABadValueIsNamedAndCountsAsUnread) {
  const ValueRow rows[] = {
      {"delay/spdif", "soon", "\"soon\": expected an integer from 0 to 4294967295 ms"},
      {"delay/spdif", "-5", "\"-5\": expected an integer from 0 to 4294967295 ms"},
      {"sound/mute", "2", "\"2\": expected an integer from 0 to 1"},
      {"tv/source", "1.5", "\"1.5\": expected an integer from -2147483648 to 2147483647"},
  };
  std::vector<Scenario> scenarios;
  for (const ValueRow& row : rows) {
    scenarios.push_back({std::string(row.name) + " " + row.content,
                         Both(WithRoom(RoomWithoutBlocks()), WithFile(row.name, row.content)),
                         {SignalAt(kIsRecording, SIGTERM)},
                         {}});
  }
  const std::vector<Observation> observations = Perform(scenarios);
  for (std::size_t n = 0; n < observations.size(); ++n) {
    SCOPED_TRACE(observations[n].name);
    CheckEnding(observations[n]);
    CheckLogForm(observations[n]);
    EXPECT_EQ("", MissingInOrder(DescribedOfHost(observations[n].lines),
                                 {std::string("E2 orvex-host: {s}/") + rows[n].name + ": " + rows[n].complaint}));
  }
}

// One wrong point, and nothing is injected.
TEST(BadInput, BadFaultsAreNamedAndLeftOut) {
  const Observation observation = Perform(
      {"unknown fault", WithFaults(R"({"voice.start": -5, "voice.sing": 1})"), {SignalAt(kIsRecording, SIGTERM)}, {}});
  CheckEnding(observation);
  EXPECT_EQ("", MissingInOrder(DescribedOfHost(observation.lines),
                               {"E2 orvex-host: {s}/faults.json: \"voice.sing\": 1: expected a known operation{s}"}));
  EXPECT_EQ(1, CountOf(observation.lines, "Start bt audio recorder"));
}

}  // namespace
}  // namespace orvex::integration
