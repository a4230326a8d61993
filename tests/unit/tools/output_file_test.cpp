// Files that a tool writes: which names it refuses before it writes anything, and when it replaces an existing file.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "output/output_file.h"
#include "unit/tools/temporary_folder.h"

namespace orvex::tools {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

class OutputFileTest : public testing::Test {
protected:
  std::string Refusal(const std::string& path, const std::vector<std::string>& others = {}) const {
    try {
      const OutputFile file(path, others);
      return "accepted";
    } catch (const OutputError& error) {
      return error.what();
    }
  }

  std::string Write(const std::string& path, const std::string& content) const {
    try {
      OutputFile(path).Write([&](std::ostream& out) { out << content; });
      return "written";
    } catch (const OutputError& error) {
      return error.what();
    }
  }

  std::ptrdiff_t FileCount() const { return std::distance(fs::directory_iterator(m_Folder.Path()), {}); }

  std::string Link(const std::string& target, const std::string& name) const {
    fs::create_symlink(target, m_Folder / name);
    return m_Folder / name;
  }

  const TemporaryFolder m_Folder;
  const std::string m_Old = m_Folder.Write("old", "old content");
};

TEST_F(OutputFileTest, TakesANewNameAndChangesNothingBeforeItIsWritten) {
  const OutputFile file(m_Folder / "new");
  EXPECT_EQ(1, FileCount());
  file.Write([](std::ostream& out) { out << "content"; });
  EXPECT_EQ("content", m_Folder.Read("new"));
  EXPECT_EQ(2, FileCount());
}

TEST_F(OutputFileTest, ReplacesWhatIsThereOnceThereIsSomethingToPutInItsPlace) {
  const OutputFile file(m_Old);
  EXPECT_EQ("old content", m_Folder.Read("old"));
  file.Write([this](std::ostream& out) {
    out << "new" << std::flush;
    EXPECT_EQ("old content", m_Folder.Read("old"));
  });
  EXPECT_EQ("new", m_Folder.Read("old"));
  EXPECT_EQ(1, FileCount());
}

TEST_F(OutputFileTest, KeepsWhatIsThereWhenTheWorkFails) {
  const OutputFile file(m_Old);
  EXPECT_THROW(file.Write([](std::ostream& out) {
    out << "half";
    throw std::logic_error("the work");
  }),
               std::logic_error);
  EXPECT_EQ("old content", m_Folder.Read("old"));
  EXPECT_EQ(1, FileCount());
}

// Runs in a process of its own, as it limits the size of the files that the process may write to 100 bytes.
int FailToFill(const std::string& path) {
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{100, 100};
  ::setrlimit(RLIMIT_FSIZE, &limit);
  try {
    OutputFile(path).Write([](std::ostream& out) { out << std::string(100000, 'x'); });
    return 0;
  } catch (const OutputError& error) {
    std::cerr << error.what();
    return 1;
  }
}

TEST_F(OutputFileTest, KeepsWhatIsThereWhenThereIsNoRoomForMore) {
  EXPECT_EXIT(std::_Exit(FailToFill(m_Old)), testing::ExitedWithCode(1), "/old: cannot be written: File too large");
  EXPECT_EQ("old content", m_Folder.Read("old"));
  EXPECT_EQ(1, FileCount());
}

TEST_F(OutputFileTest, KeepsPermissionsAndGivesANewFileThoseOfTheUser) {
  fs::permissions(m_Old, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  EXPECT_EQ("written", Write(m_Old, "new"));
  EXPECT_EQ(fs::perms(0640), fs::status(m_Old).permissions());
  const mode_t before = ::umask(027);
  EXPECT_EQ("written", Write(m_Folder / "new", "new"));
  ::umask(before);
  EXPECT_EQ(fs::perms(0640), fs::status(m_Folder / "new").permissions());
}

TEST_F(OutputFileTest, FollowsALinkToARegularFileAndKeepsTheLink) {
  const std::string link = Link("old", "link");
  EXPECT_EQ("written", Write(link, "new"));
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ("new", m_Folder.Read("old"));
}

TEST_F(OutputFileTest, RefusesWhatIsNoRegularFile) {
  ASSERT_EQ(0, ::mkfifo((m_Folder / "pipe").c_str(), 0600));
  fs::create_directory(m_Folder / "folder");
  for (const std::string& path : {m_Folder / "pipe", m_Folder / "folder", Link("/dev/null", "device"),
                                  Link("nowhere", "dangling"), std::string("/dev/full")}) {
    EXPECT_EQ(path + ": no regular file, expected one or a new name", Refusal(path));
  }
  EXPECT_TRUE(fs::is_fifo(m_Folder / "pipe"));
  EXPECT_TRUE(fs::is_character_file(m_Folder / "device"));
  EXPECT_THAT(Refusal(""), HasSubstr("expected the name of a file"));
}

TEST_F(OutputFileTest, TellsAtOnceThatAFolderCannotBeWritten) {
  EXPECT_EQ("/nonexistent/file: cannot be written: No such file or directory", Refusal("/nonexistent/file"));
  EXPECT_THAT(Refusal("/proc/file"), StartsWith("/proc/file: cannot be written: "));
  EXPECT_THAT(Refusal(m_Old + "/file"), HasSubstr("cannot be written: Not a directory"));
}

TEST_F(OutputFileTest, RefusesOneOfTheOtherFilesByWhateverName) {
  fs::create_hard_link(m_Old, m_Folder / "hard");
  const std::string symbolic = Link("old", "symbolic");
  const std::string folder = Link(".", "here");
  for (const std::string& name : {m_Old, m_Folder / "hard", symbolic, folder + "/old"}) {
    EXPECT_EQ(name + ": the same file as " + m_Old + ", expected another one", Refusal(name, {"/nonexistent", m_Old}));
    EXPECT_EQ(m_Old + ": the same file as " + name + ", expected another one", Refusal(m_Old, {name}));
  }
  // Two names of the same file, which does not exist yet.
  EXPECT_THAT(Refusal(m_Folder / "new", {folder + "/new"}), HasSubstr("the same file as"));
  EXPECT_EQ("accepted", Refusal(m_Folder / "new", {m_Old, "-", m_Folder / "other"}));
}

// Runs in a process of its own, as it redirects one of the standard streams to the file.
int RefusedBeside(int stream, const std::string& path) {
  ::dup2(::open(path.c_str(), O_RDWR), stream);
  try {
    const OutputFile file(path, {"-"});
    return 0;
  } catch (const OutputError& error) {
    std::cerr << error.what();
    return 1;
  }
}

TEST_F(OutputFileTest, RefusesTheFileToWhichAStandardStreamIsRedirected) {
  EXPECT_EXIT(std::_Exit(RefusedBeside(STDIN_FILENO, m_Old)), testing::ExitedWithCode(1), "the same file as -,");
  EXPECT_EXIT(std::_Exit(RefusedBeside(STDOUT_FILENO, m_Old)), testing::ExitedWithCode(1),
              "standard output goes there");
}

TEST_F(OutputFileTest, IsStandardOutputWhenItIsADash) {
  const OutputFile file("-", {"-"});
  EXPECT_TRUE(file.IsStandardOutput());
  EXPECT_FALSE(OutputFile(m_Old).IsStandardOutput());
  testing::internal::CaptureStdout();
  file.Write([](std::ostream& out) { out << "content"; });
  EXPECT_EQ("content", testing::internal::GetCapturedStdout());
}

}  // namespace
}  // namespace orvex::tools
