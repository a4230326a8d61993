// A recording that begins while the files of the one before are open.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "Util/DebugDumpImplFile.h"
#include "support/dump_files.h"
#include "world/world.h"

namespace {

using orvex::test::AudioName;
using orvex::test::ContentOf;
using orvex::test::OpenDescriptorsOf;
using orvex::test::ResultName;
using orvex::world::World;
namespace fs = std::filesystem;

void RemoveFiles() {
  for (const int recording : {1, 2}) {
    fs::remove(AudioName(recording));
    fs::remove(ResultName(recording));
  }
}

// Each test in a process of its own: the pair that stays open is never given back.

TEST(DebugDumpRestart, ASecondStartWithoutAStopLeavesTheFirstPairOpen) {
  const auto recordTwice = [] {
    World world;
    CDebugDumpImplFile twice;
    twice.Start();
    twice.DebugDump(std::string("first"));
    twice.Start();
    twice.DebugDump(std::string("second"));
    twice.DebugDump("audio", 5);
    const bool bothOpen = OpenDescriptorsOf(AudioName(1)) == 1 && OpenDescriptorsOf(ResultName(1)) == 1 &&
                          OpenDescriptorsOf(AudioName(2)) == 1 && OpenDescriptorsOf(ResultName(2)) == 1;
    twice.Stop();
    const bool firstStillOpen = OpenDescriptorsOf(AudioName(1)) == 1 && OpenDescriptorsOf(ResultName(1)) == 1 &&
                                OpenDescriptorsOf(AudioName(2)) == 0 && OpenDescriptorsOf(ResultName(2)) == 0;
    const bool written = ContentOf(ResultName(2)) == "second" && ContentOf(AudioName(2)) == "audio";
    RemoveFiles();
    _exit((bothOpen ? 1 : 0) + (firstStillOpen ? 2 : 0) + (written ? 4 : 0));
  };
  EXPECT_EXIT(recordTwice(), testing::ExitedWithCode(7), "");
}

TEST(DebugDumpRestart, ARestartWithoutARawFileKeepsTheResultsGoingAndTheAudioNot) {
  const auto restartBadly = [] {
    World world;
    CDebugDumpImplFile twice;
    twice.Start();
    twice.DebugDump("audio", 5);
    fs::create_directory(AudioName(2));
    twice.Start();
    twice.DebugDump(std::string("text"));
    twice.DebugDump("lost", 4);
    twice.Stop();
    const bool written = ContentOf(ResultName(1)) == "text" && !fs::exists(ResultName(2));
    const bool complained =
        world.journal.Count("E2 [ERROR] File not found!") == 1 && world.journal.Count("E2 already null") == 0;
    RemoveFiles();
    _exit((written ? 1 : 0) + (complained ? 2 : 0));
  };
  EXPECT_EXIT(restartBadly(), testing::ExitedWithCode(3), "");
}

}  // namespace
