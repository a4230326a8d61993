// The two files of a recording: names, content to the byte, and what happens when one cannot be made.
#include "Util/DebugDumpImplFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "dump_support.h"
#include "world.h"

namespace {

using orvex::service_tests::AudioName;
using orvex::service_tests::ContentOf;
using orvex::service_tests::OpenDescriptorsOf;
using orvex::service_tests::ResultName;
using orvex::world::World;
using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

constexpr const char* kNull = "E2 already null";
constexpr const char* kNotFound = "E2 [ERROR] File not found!";

class DebugDumpFile : public testing::Test {
protected:
  DebugDumpFile() { RemoveFiles(); }
  ~DebugDumpFile() override {
    writer.Stop();
    RemoveFiles();
  }
  void RemoveFiles() const {
    for (const int recording : {1, 2, 3}) {
      fs::remove_all(AudioName(recording));
      fs::remove_all(ResultName(recording));
    }
    fs::remove(elsewhere);
  }
  template <class Action>
  std::vector<std::string> During(Action action) {
    world.journal.Clear();
    action();
    return world.journal.Texts();
  }
  // Both writers answer that nothing is open.
  void ExpectClosed() {
    EXPECT_THAT(During([&] { writer.DebugDump(std::string("text")); }), ElementsAre(kNull));
    EXPECT_THAT(During([&] { writer.DebugDump("data", 4); }), ElementsAre(kNull));
  }
  static std::string StartLine(int recording) {
    return "E0 Temp file name=[" + AudioName(recording) + "][" + ResultName(recording) + "]";
  }

  const std::string elsewhere = "/tmp/orvex_dump_test_" + std::to_string(getpid());
  World world;
  CDebugDumpImplFile writer;
};

TEST_F(DebugDumpFile, EachRecordingOfAProcessHasAPairWithTheNextNumber) {
  for (const int recording : {1, 2, 3}) {
    EXPECT_THAT(During([&] { writer.Start(); }), ElementsAre("I0 CDebugDumpImplFile start", StartLine(recording)));
    EXPECT_EQ(ContentOf(AudioName(recording)), "");
    EXPECT_EQ(ContentOf(ResultName(recording)), "");
    EXPECT_THAT(During([&] { writer.Stop(); }), ElementsAre("I0 CDebugDumpImplFile Stop"));
  }
}

TEST_F(DebugDumpFile, TextsAndDataAreWrittenAsTheyAre) {
  const std::string binary("\0\xff\r\n%s\0", 7);
  writer.Start();
  EXPECT_THAT(During([&] {
                writer.DebugDump(std::string("first %d\n"));
                writer.DebugDump(binary.data(), binary.size());
                writer.DebugDump(std::string());
                writer.DebugDump(binary);
                writer.DebugDump(binary.data(), 0);
                writer.DebugDump(nullptr, 0);
                writer.DebugDump(binary.data(), 2);
              }),
              IsEmpty());
  writer.Stop();
  EXPECT_EQ(ContentOf(ResultName(1)), "first %d\n" + binary);
  EXPECT_EQ(ContentOf(AudioName(1)), binary + std::string("\0\xff", 2));
}

TEST_F(DebugDumpFile, EachRecordingHasItsOwnContent) {
  for (const int recording : {1, 2}) {
    writer.Start();
    writer.DebugDump("result " + std::to_string(recording));
    writer.DebugDump(recording == 1 ? "one" : "two", 3);
    writer.Stop();
  }
  EXPECT_EQ(ContentOf(ResultName(1)), "result 1");
  EXPECT_EQ(ContentOf(ResultName(2)), "result 2");
  EXPECT_EQ(ContentOf(AudioName(1)), "one");
  EXPECT_EQ(ContentOf(AudioName(2)), "two");
}

TEST_F(DebugDumpFile, BeforeAStartAndAfterAStopNothingIsWritten) {
  ExpectClosed();
  writer.Start();
  writer.Stop();
  ExpectClosed();
  EXPECT_EQ(ContentOf(AudioName(1)), "");
  EXPECT_EQ(ContentOf(ResultName(1)), "");
}

TEST_F(DebugDumpFile, ASecondStopOnlySaysSo) {
  writer.Start();
  writer.Stop();
  EXPECT_THAT(During([&] { writer.Stop(); }), ElementsAre("I0 CDebugDumpImplFile Stop"));
}

TEST_F(DebugDumpFile, FilesOfAnEarlierProcessAreEmptiedFirst) {
  for (const std::string& name : {AudioName(1), ResultName(1)}) {
    std::ofstream(name) << "much longer than what comes now";
  }
  writer.Start();
  writer.DebugDump(std::string("short"));
  writer.DebugDump("data", 4);
  writer.Stop();
  EXPECT_EQ(ContentOf(ResultName(1)), "short");
  EXPECT_EQ(ContentOf(AudioName(1)), "data");
}

TEST_F(DebugDumpFile, OthersCannotReadThem) {
  const mode_t before = umask(0);
  writer.Start();
  umask(before);
  for (const std::string& name : {AudioName(1), ResultName(1)}) {
    struct stat status {};
    ASSERT_EQ(stat(name.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U) << name;
  }
}

TEST_F(DebugDumpFile, WithoutARawFileThereIsNoResultFileEither) {
  fs::create_directory(AudioName(1));
  EXPECT_THAT(During([&] { writer.Start(); }), ElementsAre("I0 CDebugDumpImplFile start", StartLine(1), kNotFound));
  EXPECT_FALSE(fs::exists(ResultName(1)));
  ExpectClosed();
  EXPECT_THAT(During([&] { writer.Stop(); }), ElementsAre("I0 CDebugDumpImplFile Stop"));
}

TEST_F(DebugDumpFile, WithoutAResultFileNoAudioIsKept) {
  fs::create_directory(ResultName(1));
  EXPECT_THAT(During([&] { writer.Start(); }), ElementsAre("I0 CDebugDumpImplFile start", StartLine(1), kNotFound));
  ExpectClosed();
  writer.Stop();
  EXPECT_EQ(ContentOf(AudioName(1)), "");
}

TEST_F(DebugDumpFile, AFileThatFindsNoMemoryIsNotLeftOpen) {
  world.answers.Next("fdopen", {0});
  EXPECT_THAT(During([&] { writer.Start(); }), ElementsAre("I0 CDebugDumpImplFile start", StartLine(1), kNotFound));
  EXPECT_EQ(OpenDescriptorsOf(AudioName(1)), 0);
  EXPECT_FALSE(fs::exists(ResultName(1)));
  ExpectClosed();
}

TEST_F(DebugDumpFile, ARecordingAfterAFailedOneHasTheNextNumber) {
  fs::create_directory(AudioName(1));
  writer.Start();
  EXPECT_THAT(During([&] { writer.Start(); }), ElementsAre("I0 CDebugDumpImplFile start", StartLine(2)));
  writer.DebugDump(std::string("text"));
  writer.DebugDump("data", 4);
  writer.Stop();
  EXPECT_EQ(ContentOf(ResultName(2)), "text");
  EXPECT_EQ(ContentOf(AudioName(2)), "data");
}

// A link that somebody left in /tmp, to a file that exists or to one that does not.
class DebugDumpLink : public DebugDumpFile, public testing::WithParamInterface<bool> {
protected:
  std::string Target() const {
    if (GetParam()) {
      std::ofstream(elsewhere) << "precious";
    }
    return elsewhere;
  }
  void ExpectTargetUntouched() const { EXPECT_EQ(ContentOf(elsewhere), GetParam() ? "precious" : "(no file)"); }
};

TEST_P(DebugDumpLink, InTheWayOfTheRawFileIsNotFollowed) {
  fs::create_symlink(Target(), AudioName(1));
  EXPECT_THAT(During([&] { writer.Start(); }), ElementsAre("I0 CDebugDumpImplFile start", StartLine(1), kNotFound));
  ExpectClosed();
  writer.Stop();
  ExpectTargetUntouched();
}

TEST_P(DebugDumpLink, InTheWayOfTheResultFileIsNotFollowed) {
  fs::create_symlink(Target(), ResultName(1));
  EXPECT_THAT(During([&] { writer.Start(); }), ElementsAre("I0 CDebugDumpImplFile start", StartLine(1), kNotFound));
  ExpectClosed();
  writer.Stop();
  ExpectTargetUntouched();
}

INSTANTIATE_TEST_SUITE_P(To, DebugDumpLink, testing::Bool(),
                         [](const auto& tested) { return std::string(tested.param ? "AFile" : "Nothing"); });

}  // namespace
