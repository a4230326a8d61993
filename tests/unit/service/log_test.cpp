// The form of a log line: where it comes from, the colour of its priority, its buffer, and the whole message.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>

#include "Application/OrvexApp.h"
#include "Util/OrvexLog.h"
#include "orvex/platform/remote_voice.h"
#include "support/dump_files.h"
#include "world/world.h"

namespace {

using orvex::world::Entry;
using orvex::world::World;

int LogDebug() {
  ORVEX_DEBUG("%d of %s", 1, "five");
  return __LINE__ - 1;
}
int LogInfo() {
  ORVEX_INFO("%d of %s", 2, "five");
  return __LINE__ - 1;
}
int LogWarning() {
  ORVEX_WARNING("%d of %s", 3, "five");
  return __LINE__ - 1;
}
int LogMilestone() {
  ORVEX_MILESTONE("%d of %s", 4, "five");
  return __LINE__ - 1;
}
int LogFailure() {
  ORVEX_FAILURE("%d of %s", 5, "five");
  return __LINE__ - 1;
}

struct Kind {
  const char* function;
  int (*log)();  // returns its line
  const char* colour;
  const char* shown;  // priority and buffer, then the message
};

void PrintTo(const Kind& kind, std::ostream* out) {
  *out << kind.function;
}

class LogLine : public testing::TestWithParam<Kind> {};

TEST_P(LogLine, TellsFileFunctionAndLineAndTheMessageInItsColour) {
  World world;
  const int line = GetParam().log();
  ASSERT_EQ(world.journal.Entries().size(), 1U);
  const Entry& entry = world.journal.Entries().front();
  const std::string message = std::string(GetParam().shown).substr(3);
  EXPECT_EQ(entry.record, std::string("log_test.cpp: ") + GetParam().function + "(" + std::to_string(line) +
                              ") > \033[" + GetParam().colour + message + "\033[0m\n");
  EXPECT_EQ(entry.text, GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(Of, LogLine,
                         testing::Values(Kind{"LogDebug", LogDebug, "37m", "D0 1 of five"},
                                         Kind{"LogInfo", LogInfo, "32m", "I0 2 of five"},
                                         Kind{"LogWarning", LogWarning, "33m", "W0 3 of five"},
                                         Kind{"LogMilestone", LogMilestone, "31m", "E0 4 of five"},
                                         Kind{"LogFailure", LogFailure, "31m", "E2 5 of five"}),
                         [](const auto& tested) { return std::string(tested.param.function); });

TEST(LogMessage, HasThePriorityAndBufferNumbersOfTheSystem) {
  EXPECT_EQ(static_cast<int>(LogPriority::kDebug), 3);
  EXPECT_EQ(static_cast<int>(LogPriority::kInfo), 4);
  EXPECT_EQ(static_cast<int>(LogPriority::kWarning), 5);
  EXPECT_EQ(static_cast<int>(LogPriority::kError), 6);
  EXPECT_EQ(static_cast<int>(LogBuffer::kMain), 0);
  EXPECT_EQ(static_cast<int>(LogBuffer::kSystem), 2);
}

TEST(LogMessage, IsNotCutHoweverLongItIs) {
  World world;
  const std::string message(100000, 'x');
  ORVEX_FAILURE("<%s>", message.c_str());
  EXPECT_EQ(world.journal.Texts(), std::vector<std::string>{"E2 <" + message + ">"});
}

TEST(LogMessage, MayBeEmptyOrHoldWhatLooksLikeAFormat) {
  World world;
  ORVEX_INFO("");
  ORVEX_INFO("%s", "100 %s %n\n");
  EXPECT_THAT(world.journal.Texts(), testing::ElementsAre("I0 ", "I0 100 %s %n\n"));
}

// A whole run with every worker, so that lines of all classes are there.
TEST(LogMessage, OfEveryClassHasTheSameForm) {
  const std::regex form("([A-Za-z]+\\.(?:cpp|h)): [A-Za-z_0-9]+\\([0-9]+\\) > \033\\[3[1237]m[^\033]*\033\\[0m\n");
  const orvex::test::DumpFiles dumpFiles;
  World world;
  COrvexApp app;
  world.Create(app);
  world.AdvanceMs(500);
  ASSERT_TRUE(world.Deliver(std::vector<std::int16_t>(kVoiceBlockSamples, 1)));
  world.Inject(10001);
  world.AdvanceMs(100);
  world.Inject(10007);
  ASSERT_TRUE(world.RunToEnd());
  std::set<std::string> files;
  for (const Entry& entry : world.journal.Entries()) {
    std::smatch parts;
    if (entry.record.empty()) {
      continue;
    }
    ASSERT_TRUE(std::regex_match(entry.record, parts, form)) << entry.record;
    files.insert(parts[1]);
  }
  EXPECT_THAT(files, testing::IsSupersetOf({"OrvexApp.cpp", "OrvexManager.cpp", "OrvexReceiver.cpp", "AudioControl.cpp",
                                            "DebugDumpImplFile.cpp"}));
}

}  // namespace
