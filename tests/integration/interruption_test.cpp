// orvex-tv run is interrupted: by a signal, or because nobody reads its output any more. The service ends in order, and
// neither the temporary television nor the debug files stay.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <regex>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/parallel.h"
#include "integration/process.h"
#include "integration/test_television.h"

namespace orvex::integration {
namespace {

using testing::HasSubstr;

// A named pipe that takes a program's output.
class OutputPipe {
public:
  explicit OutputPipe(std::filesystem::path path) : m_Path(std::move(path)) {
    ::mkfifo(m_Path.c_str(), S_IRUSR | S_IWUSR);
    // A reader has to be there before a writer opens it.
    m_Reader = ::open(m_Path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ::fcntl(m_Reader, F_SETFL, 0);
  }
  ~OutputPipe() { Close(); }
  OutputPipe(const OutputPipe&) = delete;
  OutputPipe& operator=(const OutputPipe&) = delete;

  const std::filesystem::path& Path() const { return m_Path; }
  void Close() {
    if (m_Reader >= 0) {
      ::close(m_Reader);
    }
    m_Reader = -1;
  }
  // Reads until a line with `part` has come; without one, to the end. False: it has not come.
  bool ReadTo(const std::string& part) {
    std::string line;
    char next = 0;
    while (WaitForNews() && ::read(m_Reader, &next, 1) == 1) {
      line += next;
      if (next == '\n') {
        if (line.find(part) != std::string::npos) {
          return true;
        }
        line.clear();
      }
    }
    return false;
  }
  // The next write waits until somebody has read.
  void Fill() const {
    const int writer = ::open(m_Path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    while (::write(writer, "x", 1) == 1) {
    }
    ::close(writer);
  }

private:
  // Something to read, or the end. There is no end before the first writer.
  bool WaitForNews() const {
    pollfd news{m_Reader, POLLIN, 0};
    return ::poll(&news, 1, static_cast<int>(std::chrono::milliseconds(kPatience).count())) == 1;
  }

  const std::filesystem::path m_Path;
  int m_Reader = -1;
};

// A run on a temporary television, in a folder of its own.
class TemporaryRun {
public:
  explicit TemporaryRun(std::vector<std::string> arguments = {}) : m_Arguments(std::move(arguments)) {
    std::filesystem::create_directory(m_Temporary);
    m_Arguments.insert(m_Arguments.begin(), {"run", "--verbose"});
  }

  void Start(const std::filesystem::path& output) {
    m_Process = std::make_unique<Process>(ProcessCommand{
        ORVEX_TV_PROGRAM, m_Arguments, {{"TMPDIR", m_Temporary.string()}}, output, m_Folder.PathOf("errors")});
  }
  void Signal(int number) const { m_Process->Signal(number); }
  std::string WaitForEnd() const { return Describe(m_Process->WaitForEnd()); }

  std::filesystem::path PathOf(const std::string& name) const { return m_Folder.PathOf(name); }
  std::string ReadErrors() const { return m_Folder.ReadFile("errors"); }
  bool HasTelevision() const { return !std::filesystem::is_empty(m_Temporary); }
  // Those that the service's log names.
  bool HasDebugFiles() const {
    static const std::regex kTempNames(R"(Temp file name=\[([^\]]*)\]\[([^\]]*)\])");
    const std::string log = ReadErrors();
    std::smatch names;
    return std::regex_search(log, names, kTempNames) &&
           (std::filesystem::exists(names[1].str()) || std::filesystem::exists(names[2].str()));
  }

private:
  const TestTelevision m_Folder;
  const std::filesystem::path m_Temporary = m_Folder.PathOf("tmp");
  std::vector<std::string> m_Arguments;
  std::unique_ptr<Process> m_Process;
};

void ExpectNothingLeft(const TemporaryRun& run) {
  EXPECT_FALSE(run.HasTelevision());
  EXPECT_THAT(run.ReadErrors(), HasSubstr("Temp file name=["));
  EXPECT_FALSE(run.HasDebugFiles());
}

// The service has gone through its destroy step and was not killed.
void ExpectServiceEndedInOrder(const TemporaryRun& run) {
  EXPECT_THAT(run.ReadErrors(), HasSubstr("> Destroy"));
  EXPECT_THAT(run.ReadErrors(), Not(HasSubstr("the service ")));
}

struct InterruptedMoment {
  const char* line;
  int number;  // of the signal; 0: the pipe is closed
  const char* ending;
  const char* errors;
};

void Interrupt(const InterruptedMoment& moment) {
  SCOPED_TRACE(std::string(moment.line) + ", " + std::to_string(moment.number));
  TemporaryRun run;
  OutputPipe output(run.PathOf("output"));
  run.Start(output.Path());
  EXPECT_TRUE(output.ReadTo(moment.line));
  if (moment.number == 0) {
    output.Close();
  } else {
    run.Signal(moment.number);
    EXPECT_FALSE(output.ReadTo("no such line"));
  }
  EXPECT_EQ(moment.ending, run.WaitForEnd());
  EXPECT_THAT(run.ReadErrors(), HasSubstr(moment.errors));
  ExpectServiceEndedInOrder(run);
  ExpectNothingLeft(run);
}

TEST(Interruption, LeavesNothingAndEndsTheServiceInOrder) {
  const InterruptedMoment moments[] = {
      {"recording", SIGTERM, "exit code 143", "orvex-tv: interrupted by signal 15 ("},
      {"ambient noise measured", SIGINT, "exit code 130", "orvex-tv: interrupted by signal 2 ("},
      {"playing the test sound", SIGHUP, "exit code 129", "orvex-tv: interrupted by signal 1 ("},
      {"playing the test sound", SIGINT, "exit code 130", "orvex-tv: interrupted by signal 2 ("},
      {"playing the test sound", SIGQUIT, "exit code 131", "orvex-tv: interrupted by signal 3 ("},
      {"playing the test sound", SIGTERM, "exit code 143", "orvex-tv: interrupted by signal 15 ("},
      {"delay in force", SIGTERM, "exit code 143", "orvex-tv: interrupted by signal 15 ("},
      {"run started", 0, "exit code 1", "orvex-tv: standard output: cannot be written: Broken pipe"},
      {"playing the test sound", 0, "exit code 1", "orvex-tv: standard output: cannot be written: Broken pipe"},
  };
  InParallel(std::size(moments), [&](std::size_t n) { Interrupt(moments[n]); });
}

TEST(Interruption, ASecondSignalDoesNotDisturbTheEnd) {
  TemporaryRun run;
  OutputPipe output(run.PathOf("output"));
  run.Start(output.Path());
  EXPECT_TRUE(output.ReadTo("playing the test sound"));
  run.Signal(SIGINT);
  run.Signal(SIGTERM);
  EXPECT_FALSE(output.ReadTo("no such line"));
  const std::string ending = run.WaitForEnd();
  EXPECT_TRUE(ending == "exit code 130" || ending == "exit code 143") << ending;  // both may be there at once
  ExpectServiceEndedInOrder(run);
  ExpectNothingLeft(run);
}

TEST(Interruption, AFullDeviceEndsTheRun) {
  TemporaryRun run;
  run.Start("/dev/full");
  EXPECT_EQ("exit code 1", run.WaitForEnd());
  EXPECT_THAT(run.ReadErrors(), HasSubstr("orvex-tv: standard output: cannot be written: No space left on device"));
  ExpectServiceEndedInOrder(run);
  EXPECT_FALSE(run.HasTelevision());
  EXPECT_FALSE(run.HasDebugFiles());  // the run may end before it has any
}

// The service's last child sends the signal once orvex-tv has taken note of the service's end. The summary waits for a
// reader meanwhile.
TEST(Interruption, ASignalWhileItSumsUpLeavesNothing) {
  TestTelevision folder;
  const std::string dump = folder.PathOf("dump").string();
  OutputPipe sent(folder.PathOf("sent"));
  folder.WriteFile("dump", "sound");
  folder.WriteFile("service", "#!/bin/sh\nchmod 600 " + dump + "\necho 'A.cpp: f(1) > Temp file name=[" + dump + "][" +
                                  dump +
                                  ".csv]'\ntv=$PPID\n(while kill -0 $$ 2>/dev/null; do :; done; kill $tv; echo sent >" +
                                  sent.Path().string() + ") &\n");
  std::filesystem::permissions(folder.PathOf("service"), std::filesystem::perms::owner_all);
  TemporaryRun run({"--json", "--service", folder.PathOf("service").string()});
  OutputPipe output(run.PathOf("output"));
  output.Fill();
  run.Start(output.Path());
  EXPECT_TRUE(sent.ReadTo("sent"));
  EXPECT_FALSE(output.ReadTo("no such line"));
  EXPECT_EQ("exit code 143", run.WaitForEnd());
  ExpectNothingLeft(run);
}

}  // namespace
}  // namespace orvex::integration
