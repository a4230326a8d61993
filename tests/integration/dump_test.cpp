// The debug files in /tmp, where everybody may write: what lies under their names, or that there is no room, changes
// nothing but that there is no dump.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>

#include "integration/expectation.h"
#include "orvex/platform/remote_voice.h"

namespace orvex::integration {
namespace {

// What a shell leaves at "$name"; "$file" is a file of the test's.
struct Obstacle {
  const char* name;
  const char* shell;
  bool needsRoot = false;
};

constexpr Obstacle kObstacles[] = {
    {"pipe", "mkfifo \"$name\""},
    {"folder", "mkdir \"$name\""},
    {"link", "ln -s \"$file\" \"$name\""},
    {"second name", "ln \"$file\" \"$name\""},
    {"device", "mknod \"$name\" c 1 3", true},
    {"file of another user", "cp \"$file\" \"$name\" && chmod 666 \"$name\" && chown 12345 \"$name\"", true},
};

// An earlier process of the same number may have left debug files there.
constexpr const char* kFilesOfPid[] = {"/tmp/audio_dump_$$_1", "/tmp/audio_result_$$_1.csv"};

class Victim {
public:
  Victim() {
    std::ofstream(m_Path) << "precious";
    std::filesystem::permissions(m_Path, std::filesystem::perms(0640));
  }
  ~Victim() { std::filesystem::remove(m_Path); }
  Victim(const Victim&) = delete;
  Victim& operator=(const Victim&) = delete;

  const std::string& Path() const { return m_Path; }
  void ExpectUntouched() const {
    EXPECT_EQ(ReadWholeFile(m_Path), "precious");
    EXPECT_EQ(std::filesystem::status(m_Path).permissions(), std::filesystem::perms(0640));
  }

private:
  const std::string m_Path = testing::TempDir() + "orvex_dump_victim_" + std::to_string(::getpid());
};

TEST(Dump, WhateverLiesAtItsNamesTheRunIsDoneInItsTimeWithoutADump) {
  const Victim victim;
  std::vector<Scenario> scenarios;
  for (const Obstacle& obstacle : kObstacles) {
    for (const char* const name : kFilesOfPid) {
      if (!obstacle.needsRoot || ::geteuid() == 0) {
        const std::string shell = "rm -rf " + std::string(kFilesOfPid[0]) + " " + kFilesOfPid[1] + "; name=" + name +
                                  "; file='" + victim.Path() + "'; " + obstacle.shell + " && exec \"$0\"";
        scenarios.push_back({std::string(obstacle.name) + " at " + name, LeaveAsItIs, {}, {}, shell});
      }
    }
  }
  for (const Observation& observation : Perform(scenarios)) {
    SCOPED_TRACE(observation.name);
    CheckEnding(observation);
    EXPECT_EQ("", MissingInOrder(Described(observation.lines),
                                 {"E2 [ERROR] File not found!", "I0 text = {result=pass;{s};terminate=done}"}));
    CheckDifferenceApplied(observation);
    EXPECT_LT(TimeBetween(observation, "Orvex Service Create!", "ORVEX_EXIT"), std::chrono::seconds(10));
    EXPECT_THAT(observation.dump, testing::AnyOf("", "precious"));
    EXPECT_THAT(observation.result, testing::AnyOf("", "precious"));
  }
  victim.ExpectUntouched();
}

// A /tmp of 64 KiB holds 43 blocks of a recording.
TEST(Dump, AFullDiskEndsTheDumpAndNotTheRun) {
  // What is in /tmp and needed stays in it.
  const std::string confined =
      "build=\"${0%/bin/*}\"; exec bwrap --dev-bind / / --size 65536 --tmpfs /tmp --bind \"$ORVEX_TV\" \"$ORVEX_TV\" "
      "--ro-bind \"$build\" \"$build\" ";
  if (std::system("bwrap --dev-bind / / --size 65536 --tmpfs /tmp true 2>/dev/null") != 0) {
    GTEST_SKIP() << "needs bubblewrap, and a kernel that lets it have a /tmp of its own";
  }
  const std::string look = "code=$?; ls -l /tmp; exit $code";
  const Observation observation =
      Perform({"full disk", LeaveAsItIs, {}, {}, confined + "sh -c '\"$0\"; " + look + "' \"$0\""});
  CheckEnding(observation);
  EXPECT_GT(CountOf(observation.lines, "text = {result=pass;{s};terminate=done}"), 0);
  CheckDifferenceApplied(observation);
  std::smatch size;
  ASSERT_TRUE(std::regex_search(observation.output, size, std::regex(" ([0-9]+) [^\n]*audio_dump_[0-9]+_1\n")));
  EXPECT_LE(std::stol(size[1]), 65536);
  EXPECT_LT(std::stol(size[1]), CountOf(observation.lines, "buffer: {u}") * static_cast<long>(kVoiceBlockBytes))
      << "the disk was not full";
}

}  // namespace
}  // namespace orvex::integration
