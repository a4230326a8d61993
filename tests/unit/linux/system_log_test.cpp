// The system log: records as they are on stderr, one line each in a file.
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>
#include <vector>

#include "orvex/platform/system_log.h"
#include "unit/linux/port_test.h"

namespace orvex::port {
namespace {

class SystemLog : public PortTest {
protected:
  // One record, and what came to stderr.
  std::string Print(LogBuffer buffer, LogPriority priority, const std::string& record) {
    testing::internal::CaptureStderr();
    m_Result = system_log_print(buffer, priority, "Orvex", "%s", record.c_str());
    return testing::internal::GetCapturedStderr();
  }

  std::string LogFile() const { return Content("service.log"); }

  int m_Result = 0;
};

TEST_F(SystemLog, FormatsAsPrintfDoes) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(system_log_print(LogBuffer::kMain, LogPriority::kInfo, "Orvex", "%05d|%s|%.2f\n", -42, "x", 0.5), 13);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "-0042|x|0.50\n");
}

TEST_F(SystemLog, NamesBufferAndPriority) {
  const struct {
    LogBuffer buffer;
    LogPriority priority;
    const char* expected;
  } rows[] = {{LogBuffer::kMain, LogPriority::kDebug, "main D Orvex: x\n"},
              {LogBuffer::kMain, LogPriority::kWarning, "main W Orvex: x\n"},
              {LogBuffer::kSystem, LogPriority::kError, "system E Orvex: x\n"}};
  for (const auto& row : rows) {
    Remove("service.log");
    Print(row.buffer, row.priority, "x\n");
    EXPECT_EQ(LogFile(), row.expected);
  }
}

TEST_F(SystemLog, KeepsARecordWithLineBreaksOnOneLine) {
  Print(LogBuffer::kMain, LogPriority::kInfo, "one\ntwo\n\n");
  EXPECT_THAT(LogFile(), testing::EndsWith(": one\\ntwo\\n\n"));
}

TEST_F(SystemLog, EscapesWhatCouldCommandATerminalOrBeginALine) {
  const std::string head = "file.cpp: run(7) > \033[32m";
  const std::string end = "\033[0m\n";
  const struct {
    std::string message;
    std::string shown;
  } rows[] = {
      {"method: \033]0;title\007x", "method: \\x1b]0;title\\x07x"},
      {"method: \033[31mred\033[0m", "method: \\x1b[31mred\\x1b[0m"},
      {"a\nOrvexApp.cpp: forged(1) > line", "a\\nOrvexApp.cpp: forged(1) > line"},
      {"diff time = 0.0330\n", "diff time = 0.0330\n"},
      {"two\n\n", "two\\n\n"},
      {"\xC2\x9B"
       "2J \xFF",
       "\\u009b2J \\xff"},
  };
  for (const auto& row : rows) {
    Remove("service.log");
    EXPECT_EQ(Print(LogBuffer::kMain, LogPriority::kInfo, head + row.message + end), head + row.shown + end);
    EXPECT_EQ(m_Result, static_cast<int>((head + row.message + end).size()));
    EXPECT_EQ(LogFile().find('\n'), LogFile().size() - 1) << "one line";
  }
}

TEST_F(SystemLog, LeavesOnlyAColourBehindThePrefix) {
  for (const char* const text : {"\033[2J", "x: y(1) > \033[2Jz", "x: y(1) > \033[3", "x: y(1) > ", "\033[0m"}) {
    const std::string shown = Print(LogBuffer::kMain, LogPriority::kInfo, std::string(text) + "\n");
    EXPECT_EQ(shown.find('\033'), std::string::npos) << text;
  }
}

TEST_F(SystemLog, FollowsNoLinkAndFillsNoPipe) {
  const auto elsewhere = Folder() / "elsewhere";
  std::filesystem::create_symlink(elsewhere, Folder() / "service.log");
  Print(LogBuffer::kMain, LogPriority::kInfo, "x\n");
  EXPECT_LT(m_Result, 0);
  EXPECT_FALSE(std::filesystem::exists(elsewhere));

  Remove("service.log");
  ASSERT_EQ(mkfifo((Folder() / "service.log").c_str(), 0600), 0);
  const int reader = open((Folder() / "service.log").c_str(), O_RDONLY | O_NONBLOCK);
  Print(LogBuffer::kMain, LogPriority::kInfo, "x\n");
  EXPECT_LT(m_Result, 0);
  char byte = 0;
  EXPECT_LE(read(reader, &byte, 1), 0);
  close(reader);
}

TEST_F(SystemLog, CutsNoRecordHoweverLong) {
  for (const std::size_t length : {std::size_t{511}, std::size_t{512}, std::size_t{513}, std::size_t{300000}}) {
    Remove("service.log");
    const std::string record(length, 'x');
    EXPECT_EQ(Print(LogBuffer::kMain, LogPriority::kInfo, record), record);
    EXPECT_THAT(LogFile(), testing::EndsWith(": " + record + "\n"));
    EXPECT_EQ(m_Result, static_cast<int>(length));
  }
}

TEST_F(SystemLog, LeavesErrnoAsItWas) {
  errno = EDOM;
  Print(LogBuffer::kMain, LogPriority::kInfo, "x\n");
  EXPECT_EQ(errno, EDOM);
}

TEST_F(SystemLog, AnswersNegativeWhenTheFileCannotBeWritten) {
  std::filesystem::create_directory(Folder() / "service.log");
  EXPECT_EQ(Print(LogBuffer::kMain, LogPriority::kInfo, "x\n"), "x\n");
  EXPECT_LT(m_Result, 0);
}

TEST_F(SystemLog, SurvivesABrokenStderr) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const int before = dup(STDERR_FILENO);
  dup2(ends[1], STDERR_FILENO);
  close(ends[0]);
  const int result = system_log_print(LogBuffer::kMain, LogPriority::kInfo, "Orvex", "nobody reads\n");
  dup2(before, STDERR_FILENO);
  close(before);
  close(ends[1]);
  EXPECT_EQ(result, 13);
  EXPECT_THAT(LogFile(), testing::EndsWith(": nobody reads\n"));
}

TEST_F(SystemLog, MixesNoRecordsOfManyThreadsAndKeepsTheOrderOfEach) {
  constexpr int kThreads = 4;
  constexpr int kRecords = 100;
  testing::internal::CaptureStderr();
  std::vector<std::thread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([number] {
      for (int record = 0; record < kRecords; ++record) {
        system_log_print(LogBuffer::kMain, LogPriority::kInfo, "Orvex", "%d %d\n", number, record);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  testing::internal::GetCapturedStderr();
  std::istringstream lines(LogFile());
  std::string buffer, priority, tag;
  int number = 0, record = 0, count = 0;
  std::vector<int> next(kThreads);
  while (lines >> buffer >> priority >> tag >> number >> record) {
    EXPECT_EQ(record, next.at(static_cast<std::size_t>(number))++);
    ++count;
  }
  EXPECT_EQ(count, kThreads * kRecords);
}

}  // namespace
}  // namespace orvex::port
