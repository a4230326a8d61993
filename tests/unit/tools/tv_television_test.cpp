// The television of a run: what the options put into its directory, and what they leave alone.
#include <stdlib.h>

#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "linux/small_files.h"
#include "options/program.h"
#include "orvex/sim/room_json.h"
#include "tv/run_television.h"
#include "unit/tools/temporary_folder.h"

namespace orvex::tools {
namespace {

using testing::Contains;
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

// Made from what the options name.
class PreparedTelevision : public RunTelevision {
public:
  explicit PreparedTelevision(const TelevisionOptions& options) : RunTelevision(options, ReadInput(options)) {}
};

sim::RoomConfig RoomOf(const RunTelevision& television) {
  return ReadRoomFile(television.RoomFile().string());
}

TEST(RunTelevision, RemovesATemporaryOneAtTheEnd) {
  std::string directory;
  {
    const PreparedTelevision television(TelevisionOptions{});
    directory = television.Get().GetDirectory().string();
    EXPECT_TRUE(std::filesystem::exists(directory));
  }
  EXPECT_FALSE(std::filesystem::exists(directory));
}

TelevisionOptions OptionsOn(const std::string& directory, const std::string& roomArguments) {
  TelevisionOptions options = Options(roomArguments);
  options.directory = directory;
  return options;
}

TEST(RunTelevision, KeepsAnExistingOneWithItsDelayAndItsRoom) {
  const TemporaryFolder folder;
  const std::string room = folder.Write("room.json", R"({"tv": {"latency_ms": 60}})");
  TelevisionOptions options = OptionsOn(folder.Path(), "--optical-latency 50");
  options.baseDelayMs = 70;
  {
    const PreparedTelevision television(options);
    EXPECT_DOUBLE_EQ(60.0, RoomOf(television).tv.latencyMs);
    EXPECT_DOUBLE_EQ(50.0, RoomOf(television).optical.latencyMs);
  }
  EXPECT_EQ(R"({"tv": {"latency_ms": 60}})", folder.Read("room.json"));
  const PreparedTelevision again(OptionsOn(folder.Path(), ""));
  EXPECT_EQ(70, again.Get().GetNumber("delay/spdif"));
  EXPECT_DOUBLE_EQ(60.0, RoomOf(again).tv.latencyMs);
  EXPECT_DOUBLE_EQ(sim::RoomConfig().optical.latencyMs, RoomOf(again).optical.latencyMs);
}

TEST(RunTelevision, MakesTheRoomTheTelevisionsOwnOnRequest) {
  const TemporaryFolder folder;
  folder.Write("room.json", R"({"microphone": {"noise_file": "fan.wav"}})");
  TelevisionOptions options = OptionsOn(folder.Path(), "--optical-latency 50");
  options.saveRoom = true;
  EXPECT_EQ(folder / "fan.wav", RoomOf(PreparedTelevision(options)).noiseFile);
  const sim::RoomConfig saved = sim::ParseRoom(folder.Read("room.json"), "room.json");
  EXPECT_DOUBLE_EQ(50.0, saved.optical.latencyMs);
  EXPECT_EQ("fan.wav", saved.noiseFile);
  options.directory.clear();
  EXPECT_THROW(const PreparedTelevision television(options), UsageError);
}

TEST(RunTelevision, IsTheOneThatTheEnvironmentNamesUnlessTheOptionDoes) {
  const TemporaryFolder folder;
  ::setenv("ORVEX_TV", (folder / "named").c_str(), 1);
  EXPECT_EQ(folder / "named", PreparedTelevision(TelevisionOptions{}).Get().GetDirectory());
  EXPECT_EQ(folder / "given", PreparedTelevision(OptionsOn(folder / "given", "")).Get().GetDirectory());
  ::setenv("ORVEX_TV", "", 1);
  EXPECT_TRUE(std::filesystem::exists(folder / "named/room.json"));
}

TEST(RunTelevision, BeginsEachRunWithTheSameDelayAndAnotherSeed) {
  const PreparedTelevision television(Options("--seed 7"));
  television.Get().Set("delay/spdif", "12");
  television.Prepare(2);
  EXPECT_EQ(100, television.DelayMs());
  EXPECT_EQ(9u, RoomOf(television).seed);
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
    EXPECT_TRUE(expected == RoomOf(PreparedTelevision(Options(option.arguments)))) << option.arguments;
  }
}

TEST(RunTelevision, LetsTheCommandLineOverrideTheRoomFile) {
  const TemporaryFolder folder;
  const std::string file =
      folder.Write("room.json", R"({"seed": 7, "tv": {"latency_ms": 20}, "optical": {"latency_ms": 30}})");
  const sim::RoomConfig room = RoomOf(PreparedTelevision(Options("--room " + file + " --tv-latency 25")));
  EXPECT_EQ(7u, room.seed);
  EXPECT_DOUBLE_EQ(25.0, room.tv.latencyMs);
  EXPECT_DOUBLE_EQ(30.0, room.optical.latencyMs);
}

TEST(RunTelevision, FindsANoiseFileBesideTheRoomFileThatNamesIt) {
  const TemporaryFolder folder;
  const std::string file = folder.Write("room.json", R"({"microphone": {"noise_file": "fan.wav"}})");
  EXPECT_EQ(folder / "fan.wav", RoomOf(PreparedTelevision(Options("--room " + file))).noiseFile);
}

TEST(RunTelevision, RefusesImpossibleAndUnreadableRooms) {
  const TemporaryFolder folder;
  const std::string broken = folder.Write("broken.json", R"({"seed": "many"})");
  EXPECT_THROW(PreparedTelevision(Options("--room " + broken)), sim::RoomError);
  EXPECT_THROW(PreparedTelevision(Options("--room " + (folder / "missing.json"))), UsageError);
  EXPECT_THROW(Options("--noise loud"), UsageError);
  EXPECT_THROW(Options("--loss 2"), UsageError);
}

TEST(RunTelevision, LeavesTheFaultsOfATelevisionAsTheyAreAndRefusesWhatIsNoObject) {
  const TemporaryFolder folder;
  TelevisionOptions options;
  options.directory = folder / "tv";
  options.faultsFile = folder.Write("faults.json", R"({"voice.start": [-115, 0]})");
  std::filesystem::create_directory(options.directory);
  folder.Write("tv/faults.json", "{}");
  {
    const PreparedTelevision television(options);
    EXPECT_THAT(television.Environment(), Contains("ORVEX_TV_FAULTS=" + television.FaultsFile().string()));
    EXPECT_EQ(R"({"voice.start": [-115, 0]})", port::ReadSmallFile(television.FaultsFile(), 100));
  }
  EXPECT_EQ("{}", folder.Read("tv/faults.json"));
  options.faultsFile = folder.Write("faults.json", "[1]");
  try {
    const PreparedTelevision television(options);
    ADD_FAILURE() << "accepted";
  } catch (const UsageError& error) {
    EXPECT_THAT(error.what(), HasSubstr(options.faultsFile + ": expected a JSON object"));
  }
  options.faultsFile = folder / "missing.json";
  EXPECT_THROW(const PreparedTelevision television(options), UsageError);
  options = Options("--room -");
  options.faultsFile = "-";
  EXPECT_THROW(const PreparedTelevision television(options), UsageError);
}

TEST(RunTelevision, KnowsTheTruthForTheDelayInForce) {
  TelevisionOptions options = Options("--tv-latency 30 --optical-latency 50");
  options.baseDelayMs = 100;
  const PreparedTelevision television(options);
  EXPECT_THAT(television.MisalignmentMs(television.DelayMs()), Optional(DoubleEq(120.0)));
  television.Get().Set("delay/spdif", "0");
  EXPECT_THAT(television.MisalignmentMs(television.DelayMs()), Optional(DoubleEq(20.0)));
  std::filesystem::remove(television.Get().PathOf("delay/spdif"));
  EXPECT_EQ(std::nullopt, television.MisalignmentMs(television.DelayMs()));
}

}  // namespace
}  // namespace orvex::tools
