// The television of a run: what the options put into its directory, and what they leave alone.
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "options/program.h"
#include "orvex/sim/room_json.h"
#include "tv/run_television.h"
#include "unit/tools/temporary_folder.h"

namespace orvex::tools {
namespace {

using testing::DoubleEq;
using testing::HasSubstr;
using testing::Optional;

TelevisionOptions Options(const std::string& roomArguments) {
  TelevisionOptions options;
  Program program("orvex-test", "", "", kExitFailed);
  options.room.AddTo(program);
  std::istringstream words(roomArguments);
  program.Read({std::istream_iterator<std::string>(words), {}});
  return options;
}

sim::RoomConfig RoomOf(const RunTelevision& television) {
  return ReadRoomFile(television.Get().PathOf("room.json").string());
}

TEST(RunTelevision, RemovesATemporaryOneAtTheEnd) {
  std::string directory;
  {
    const RunTelevision television(TelevisionOptions{});
    directory = television.Get().GetDirectory().string();
    EXPECT_TRUE(std::filesystem::exists(directory));
  }
  EXPECT_FALSE(std::filesystem::exists(directory));
}

TEST(RunTelevision, KeepsAnExistingOneWithTheValuesThatWereNotGiven) {
  const TemporaryFolder folder;
  TelevisionOptions options = Options("--tv-latency 50");
  options.directory = folder.Path();
  options.baseDelayMs = 70;
  { const RunTelevision television(options); }
  options = Options("");
  options.directory = folder.Path();
  const RunTelevision again(options);
  EXPECT_EQ(70, again.Get().GetNumber("delay/spdif"));
  EXPECT_DOUBLE_EQ(50.0, RoomOf(again).tv.latencyMs);
}

struct OptionCase {
  const char* arguments;
  std::function<void(sim::RoomConfig&)> expected;
};

TEST(RunTelevision, WritesEveryRoomOption) {
  using Room = sim::RoomConfig;
  const OptionCase cases[] = {
      {"--tv-latency 11", [](Room& r) { r.tv.latencyMs = 11; }},
      {"--optical-latency 12", [](Room& r) { r.optical.latencyMs = 12; }},
      {"--gain-tv -13", [](Room& r) { r.tv.gainDb = -13; }},
      {"--gain-optical -14", [](Room& r) { r.optical.gainDb = -14; }},
      {"--distance 1.5", [](Room& r) { r.tv.distanceM = r.optical.distanceM = 1.5; }},
      {"--rt60 0.6", [](Room& r) { r.tv.rt60S = r.optical.rt60S = 0.6; }},
      {"--drr -3", [](Room& r) { r.tv.directToReverberantDb = r.optical.directToReverberantDb = -3; }},
      {"--lock 300", [](Room& r) { r.opticalLockMs = 300; }},
      {"--rate 48000", [](Room& r) { r.microphoneRateHz = 48000; }},
      {"--rate-error -200", [](Room& r) { r.rateErrorPpm = -200; }},
      {"--loss 0.25", [](Room& r) { r.voiceLossProbability = 0.25; }},
      {"--jitter 8", [](Room& r) { r.voiceJitterMs = 8; }},
      {"--noise -50", [](Room& r) { r.noiseDbfs = -50; }},
      {"--noise none", [](Room& r) { r.noiseDbfs.reset(); }},
      {"--optical-muted", [](Room& r) { r.opticalMuted = true; }},
      {"--seed 18446744073709551615", [](Room& r) { r.seed = 18446744073709551615u; }},
  };
  for (const OptionCase& option : cases) {
    sim::RoomConfig expected;
    option.expected(expected);
    EXPECT_TRUE(expected == RoomOf(RunTelevision(Options(option.arguments)))) << option.arguments;
  }
}

TEST(RunTelevision, LetsTheCommandLineOverrideTheRoomFile) {
  const TemporaryFolder folder;
  const std::string file =
      folder.Write("room.json", R"({"seed": 7, "tv": {"latency_ms": 20}, "optical": {"latency_ms": 30}})");
  const sim::RoomConfig room = RoomOf(RunTelevision(Options("--room " + file + " --tv-latency 25")));
  EXPECT_EQ(7u, room.seed);
  EXPECT_DOUBLE_EQ(25.0, room.tv.latencyMs);
  EXPECT_DOUBLE_EQ(30.0, room.optical.latencyMs);
}

TEST(RunTelevision, FindsANoiseFileBesideTheRoomFileThatNamesIt) {
  const TemporaryFolder folder;
  const std::string file = folder.Write("room.json", R"({"microphone": {"noise_file": "fan.wav"}})");
  EXPECT_EQ(folder / "fan.wav", RoomOf(RunTelevision(Options("--room " + file))).noiseFile);
}

TEST(RunTelevision, RefusesImpossibleAndUnreadableRooms) {
  const TemporaryFolder folder;
  const std::string broken = folder.Write("broken.json", R"({"seed": "many"})");
  EXPECT_THROW(RunTelevision(Options("--room " + broken)), sim::RoomError);
  EXPECT_THROW(RunTelevision(Options("--loss 2")), sim::RoomError);
  EXPECT_THROW(RunTelevision(Options("--room " + (folder / "missing.json"))), UsageError);
  EXPECT_THROW(Options("--noise loud"), UsageError);
}

TEST(RunTelevision, CopiesFaultsAndRefusesWhatIsNoObject) {
  const TemporaryFolder folder;
  TelevisionOptions options;
  options.directory = folder / "tv";
  options.faultsFile = folder.Write("faults.json", R"({"voice.start": [-115, 0]})");
  { const RunTelevision television(options); }
  EXPECT_EQ(R"({"voice.start": [-115, 0]})", folder.Read("tv/faults.json"));
  options.faultsFile = folder.Write("faults.json", "[1]");
  try {
    const RunTelevision television(options);
    ADD_FAILURE() << "accepted";
  } catch (const UsageError& error) {
    EXPECT_THAT(error.what(), HasSubstr(options.faultsFile + ": expected a JSON object"));
  }
  options.faultsFile = folder / "missing.json";
  EXPECT_THROW(const RunTelevision television(options), UsageError);
}

TEST(RunTelevision, KnowsTheTruthForTheDelayInForce) {
  TelevisionOptions options = Options("--tv-latency 30 --optical-latency 50");
  options.baseDelayMs = 100;
  const RunTelevision television(options);
  EXPECT_THAT(television.MisalignmentMs(television.DelayMs()), Optional(DoubleEq(120.0)));
  television.Get().Set("delay/spdif", "0");
  EXPECT_THAT(television.MisalignmentMs(television.DelayMs()), Optional(DoubleEq(20.0)));
  std::filesystem::remove(television.Get().PathOf("delay/spdif"));
  EXPECT_EQ(std::nullopt, television.MisalignmentMs(television.DelayMs()));
}

}  // namespace
}  // namespace orvex::tools
