// The two files of a recording: names, content to the byte, and what happens when one cannot be made.
#include "Util/DebugDumpImplFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "support/dump_files.h"
#include "support/journal.h"

namespace {

using orvex::test::AudioName;
using orvex::test::ContentOf;
using orvex::test::DumpFiles;
using orvex::test::During;
using orvex::test::OpenDescriptorsOf;
using orvex::test::ResultName;
using orvex::world::World;
using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

constexpr const char* kNull = "E2 already null";
constexpr const char* kNotFound = "E2 [ERROR] File not found!";

class DebugDumpFile : public testing::Test {
protected:
  ~DebugDumpFile() override {
    // Closes the pairs that the writer has left open; only the world still knows them.
    while (!world.openFiles.empty()) {
      std::fclose(*world.openFiles.begin());
    }
    fs::remove(elsewhere);
  }
  // Both overloads of DebugDump() log that no file is open.
  void ExpectClosed() {
    EXPECT_THAT(During(world, [&] { writer.DebugDump(std::string("text")); }), ElementsAre(kNull));
    EXPECT_THAT(During(world, [&] { writer.DebugDump("data", 4); }), ElementsAre(kNull));
  }
  static std::string StartLine(int recording) {
    return "E0 Temp file name=[" + AudioName(recording) + "][" + ResultName(recording) + "]";
  }

  const std::string elsewhere = "/tmp/orvex_dump_test_" + std::to_string(getpid());
  const DumpFiles dumpFiles;
  World world;
  CDebugDumpImplFile writer;
};

TEST_F(DebugDumpFile, EachRecordingOfAProcessHasAPairWithTheNextNumber) {
  for (const int recording : {1, 2, 3}) {
    EXPECT_THAT(During(world, [&] { writer.Start(); }),
                ElementsAre("I0 CDebugDumpImplFile start", StartLine(recording)));
    EXPECT_EQ(ContentOf(AudioName(recording)), "");
    EXPECT_EQ(ContentOf(ResultName(recording)), "");
    EXPECT_THAT(During(world, [&] { writer.Stop(); }), ElementsAre("I0 CDebugDumpImplFile Stop"));
  }
}

TEST_F(DebugDumpFile, TextsAndDataAreWrittenAsTheyAre) {
  const std::string binary("\0\xff\r\n%s\0", 7);
  writer.Start();
  EXPECT_THAT(During(world,
                     [&] {
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

TEST_F(DebugDumpFile, ASecondStopDoesNothing) {
  writer.Start();
  writer.Stop();
  EXPECT_THAT(During(world, [&] { writer.Stop(); }), ElementsAre("I0 CDebugDumpImplFile Stop"));
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
  EXPECT_THAT(During(world, [&] { writer.Start(); }),
              ElementsAre("I0 CDebugDumpImplFile start", StartLine(1), kNotFound));
  EXPECT_FALSE(fs::exists(ResultName(1)));
  ExpectClosed();
  EXPECT_THAT(During(world, [&] { writer.Stop(); }), ElementsAre("I0 CDebugDumpImplFile Stop"));
}

TEST_F(DebugDumpFile, WithoutAResultFileNoAudioIsKept) {
  fs::create_directory(ResultName(1));
  EXPECT_THAT(During(world, [&] { writer.Start(); }),
              ElementsAre("I0 CDebugDumpImplFile start", StartLine(1), kNotFound));
  ExpectClosed();
  writer.Stop();
  EXPECT_EQ(ContentOf(AudioName(1)), "");
}

TEST_F(DebugDumpFile, AFileMayGetTheNumberOfAClosedStandardInput) {
  const int input = dup(STDIN_FILENO);
  close(STDIN_FILENO);
  writer.Start();
  const std::string data = "data";
  writer.DebugDump(data.data(), data.size());
  writer.Stop();
  dup2(input, STDIN_FILENO);
  close(input);
  EXPECT_EQ(ContentOf(AudioName(1)), data);
}

TEST_F(DebugDumpFile, AFileThatFindsNoMemoryIsNotLeftOpen) {
  world.answers.Next("fdopen", {0});
  EXPECT_THAT(During(world, [&] { writer.Start(); }),
              ElementsAre("I0 CDebugDumpImplFile start", StartLine(1), kNotFound));
  EXPECT_EQ(OpenDescriptorsOf(AudioName(1)), 0);
  EXPECT_FALSE(fs::exists(ResultName(1)));
  ExpectClosed();
}

TEST_F(DebugDumpFile, ARecordingAfterAFailedOneHasTheNextNumber) {
  fs::create_directory(AudioName(1));
  writer.Start();
  EXPECT_THAT(During(world, [&] { writer.Start(); }), ElementsAre("I0 CDebugDumpImplFile start", StartLine(2)));
  writer.DebugDump(std::string("text"));
  writer.DebugDump("data", 4);
  writer.Stop();
  EXPECT_EQ(ContentOf(ResultName(2)), "text");
  EXPECT_EQ(ContentOf(AudioName(2)), "data");
}

TEST_F(DebugDumpFile, AFileThatOthersCouldReadIsEmptiedAndClosedToThem) {
  for (const std::string& name : {AudioName(1), ResultName(1)}) {
    std::ofstream(name) << "old";
    ASSERT_EQ(chmod(name.c_str(), 0666), 0);
  }
  writer.Start();
  for (const std::string& name : {AudioName(1), ResultName(1)}) {
    struct stat status {};
    ASSERT_EQ(stat(name.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U) << name;
    EXPECT_EQ(status.st_size, 0) << name;
  }
}

// Another thread may still be writing the last lines of the first recording.
TEST_F(DebugDumpFile, ARecordingThatBeginsWhileAnotherIsOpenLeavesThatOneOpen) {
  writer.Start();
  writer.DebugDump(std::string("first"));
  writer.Start();
  writer.DebugDump(std::string("second"));
  writer.DebugDump("audio", 5);
  writer.Stop();
  EXPECT_EQ(OpenDescriptorsOf(AudioName(1)), 1);
  EXPECT_EQ(OpenDescriptorsOf(ResultName(1)), 1);
  EXPECT_EQ(OpenDescriptorsOf(AudioName(2)), 0);
  EXPECT_EQ(OpenDescriptorsOf(ResultName(2)), 0);
  EXPECT_EQ(ContentOf(ResultName(2)), "second");
  EXPECT_EQ(ContentOf(AudioName(2)), "audio");
}

TEST_F(DebugDumpFile, ARecordingWithoutARawFileWritesItsResultsToTheOneThatIsOpen) {
  writer.Start();
  fs::create_directory(AudioName(2));
  EXPECT_THAT(During(world, [&] { writer.Start(); }),
              ElementsAre("I0 CDebugDumpImplFile start", StartLine(2), kNotFound));
  EXPECT_THAT(During(world,
                     [&] {
                       writer.DebugDump(std::string("text"));
                       writer.DebugDump("lost", 4);
                     }),
              IsEmpty());
  writer.Stop();
  EXPECT_EQ(ContentOf(ResultName(1)), "text");
  EXPECT_FALSE(fs::exists(ResultName(2)));
}

// Something that somebody left in /tmp under one of the two names. The service must not change it.
struct Obstacle {
  const char* name;
  void (*place)(const std::string& name, const std::string& elsewhere);
  std::string (*look)(const std::string& name, const std::string& elsewhere);
  bool needsRoot = false;
};

constexpr uid_t kForeignUser = 12345;

std::string OwnerModeAndContent(const std::string& name) {
  struct stat status {};
  EXPECT_EQ(stat(name.c_str(), &status), 0);
  return std::to_string(status.st_uid) + " " + std::to_string(status.st_mode) + " " + ContentOf(name);
}

const Obstacle kObstacles[] = {
    {"ALinkToAFile",
     [](const std::string& name, const std::string& elsewhere) {
       std::ofstream(elsewhere) << "precious";
       fs::create_symlink(elsewhere, name);
     },
     [](const std::string&, const std::string& elsewhere) { return ContentOf(elsewhere); }},
    {"ALinkToNothing",
     [](const std::string& name, const std::string& elsewhere) { fs::create_symlink(elsewhere, name); },
     [](const std::string&, const std::string& elsewhere) { return ContentOf(elsewhere); }},
    {"ASecondNameOfAFile",
     [](const std::string& name, const std::string& elsewhere) {
       std::ofstream(elsewhere) << "precious";
       fs::create_hard_link(elsewhere, name);
     },
     [](const std::string&, const std::string& elsewhere) { return OwnerModeAndContent(elsewhere); }},
    {"AFolder", [](const std::string& name, const std::string&) { fs::create_directory(name); },
     [](const std::string& name, const std::string&) { return std::string(fs::is_directory(name) ? "folder" : ""); }},
    {"APipe", [](const std::string& name, const std::string&) { EXPECT_EQ(mkfifo(name.c_str(), 0666), 0); },
     [](const std::string& name, const std::string&) { return std::string(fs::is_fifo(name) ? "pipe" : ""); }},
    {"ASocket",
     [](const std::string& name, const std::string&) { EXPECT_EQ(mknod(name.c_str(), S_IFSOCK | 0666, 0), 0); },
     [](const std::string& name, const std::string&) { return std::string(fs::is_socket(name) ? "socket" : ""); }},
    {"ADevice",
     [](const std::string& name, const std::string&) {
       EXPECT_EQ(mknod(name.c_str(), S_IFCHR | 0666, makedev(1, 3)), 0);
     },
     [](const std::string& name, const std::string&) {
       return std::string(fs::is_character_file(name) ? "device" : "");
     },
     true},
    {"AFileOfAnotherUser",
     [](const std::string& name, const std::string&) {
       std::ofstream(name) << "theirs";
       EXPECT_EQ(chmod(name.c_str(), 0666), 0);
       EXPECT_EQ(chown(name.c_str(), kForeignUser, kForeignUser), 0);
     },
     [](const std::string& name, const std::string&) { return OwnerModeAndContent(name); }, true},
};

class DebugDumpObstacle : public DebugDumpFile, public testing::WithParamInterface<Obstacle> {
protected:
  void SetUp() override {
    if (GetParam().needsRoot && geteuid() != 0) {
      GTEST_SKIP() << "only root can put such a thing there";
    }
  }
  void ExpectRefusedAt(const std::string& name) {
    GetParam().place(name, elsewhere);
    const std::string before = GetParam().look(name, elsewhere);
    EXPECT_THAT(During(world, [&] { writer.Start(); }),
                ElementsAre("I0 CDebugDumpImplFile start", StartLine(1), kNotFound));
    ExpectClosed();
    writer.Stop();
    EXPECT_EQ(GetParam().look(name, elsewhere), before);
    EXPECT_EQ(OpenDescriptorsOf(name), 0);
  }
};

TEST_P(DebugDumpObstacle, InTheWayOfTheRawFileIsAFailureAndLeftAlone) {
  ExpectRefusedAt(AudioName(1));
  EXPECT_FALSE(fs::exists(ResultName(1)));
}

TEST_P(DebugDumpObstacle, InTheWayOfTheResultFileIsAFailureAndLeftAlone) {
  ExpectRefusedAt(ResultName(1));
  EXPECT_EQ(ContentOf(AudioName(1)), "");
}

INSTANTIATE_TEST_SUITE_P(All, DebugDumpObstacle, testing::ValuesIn(kObstacles),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
