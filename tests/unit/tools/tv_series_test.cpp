// orvex-tv run: several runs, what is kept of them, and how they are interrupted.
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <sstream>
#include <tuple>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "linux/json_text.h"
#include "run/debug_files.h"
#include "unit/tools/tv_calls.h"

namespace orvex::tools {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

using KeptRun = RunWithDebugFiles;
using RunSeries = RunWithDebugFiles;
using InterruptedRun = RunWithDebugFiles;

constexpr char kAligned[] =
    "echo 'A.cpp: f(1) > diff time = 0.0400'; echo 'A.cpp: f(1) > after delay = 60'\necho 60 >$ORVEX_TV/delay/spdif\n";

std::vector<std::string> NamesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  return names;
}

TEST_F(KeptRun, LeavesNothingUnlessItIsToBeKept) {
  const std::string service = ServiceWithDebugFiles("");
  const TvOutcome run = Call({"run", "--service", service.c_str()});
  EXPECT_THAT(run.out, Not(HasSubstr("dump")));
  EXPECT_FALSE(HasDebugFiles());
  EXPECT_FALSE(HasTelevision());
}

bool IsOlderThanNow(const std::string& file) {
  struct stat state {};
  EXPECT_EQ(0, ::stat(file.c_str(), &state));
  const timespec now = FileTimeNow();
  return std::tie(state.st_ctim.tv_sec, state.st_ctim.tv_nsec) < std::tie(now.tv_sec, now.tv_nsec);
}

// As when the name is taken: the service does without its files then.
TEST_F(KeptRun, LeavesFilesAloneThatTheServiceHasOnlyNamed) {
  const std::string service =
      Service("echo 'A.cpp: f(1) > Temp file name=[" + m_Folder / "dump" + "][" + m_Folder / "missing.csv" + "]'\n");
  const std::string kept = m_Folder / "kept";
  while (!IsOlderThanNow(m_Folder / "dump")) {
    // Some milliseconds.
  }
  Call({"run", "--service", service.c_str()});
  Call({"run", "--keep", kept.c_str(), "--service", service.c_str()});
  EXPECT_EQ("sound", m_Folder.Read("dump"));
  EXPECT_THAT(NamesIn(kept), UnorderedElementsAre("service.log", "events.jsonl", "room.json", "run.json"));
  EXPECT_TRUE(port::ParseJson(m_Folder.Read("kept/run.json"))["dump_file"].isNull());
}

TEST_F(KeptRun, DoesNotOverwriteWhatItReads) {
  const std::string room = m_Folder.Write("room.json", "{}");
  const TvOutcome run = Call({"run", "--room", room.c_str(), "--report", room.c_str(), "--service", "/nonexistent"});
  EXPECT_NE(0, run.exitCode);
  EXPECT_EQ("{}", m_Folder.Read("room.json"));
  EXPECT_EQ(2, Call({"record", "--room", room.c_str(), room.c_str()}).exitCode);
  EXPECT_EQ("{}", m_Folder.Read("room.json"));
}

TEST_F(KeptRun, HasAllThatItLeftInOneFolder) {
  const std::string service = ServiceWithDebugFiles(
      "echo a log line >>$ORVEX_TV/service.log; echo '{\"event\": \"ORVEXSET\"}' >>$ORVEX_TV/events.jsonl\n");
  Call({"set", "--tv", m_Tv.c_str(), "delay", "100"});
  m_Folder.Write("tv/service.log", "of an earlier run\n");
  const std::string faults = m_Folder.Write("deaf.json", R"({"voice.start": -115})");
  const std::string kept = m_Folder / "kept";
  const TvOutcome run = Call({"run", "--tv", m_Tv.c_str(), "--seed", "5", "--faults", faults.c_str(), "--keep",
                              kept.c_str(), "--service", service.c_str()});
  EXPECT_EQ("", run.error);
  EXPECT_THAT(run.out, HasSubstr("recording               " + kept + "/dump_1.raw\n"));
  EXPECT_THAT(NamesIn(kept), UnorderedElementsAre("dump_1.raw", "result_1.csv", "service.log", "events.jsonl",
                                                  "room.json", "faults.json", "run.json"));
  EXPECT_EQ("sound", m_Folder.Read("kept/dump_1.raw"));
  EXPECT_EQ("a log line\n", m_Folder.Read("kept/service.log"));
  EXPECT_EQ("{\"event\":\"ORVEXSET\"}\n", m_Folder.Read("kept/events.jsonl"));
  EXPECT_EQ(5, port::ParseJson(m_Folder.Read("kept/room.json"))["seed"].asInt());
  EXPECT_EQ(kept + "/result_1.csv", port::ParseJson(m_Folder.Read("kept/run.json"))["result_file"].asString());
  EXPECT_FALSE(HasDebugFiles());
}

TEST_F(KeptRun, NeedsAFolderWithNothingInIt) {
  const TvOutcome run = Call({"run", "--keep", m_Folder.Path().c_str(), "--service", "/nonexistent/service"});
  EXPECT_EQ(2, run.exitCode);
  EXPECT_THAT(run.error, HasSubstr("not empty, expected a new or an empty folder"));
}

TEST_F(KeptRun, HasAPageAboutWhatWasHeard) {
  const std::string service = ServiceWithDebugFiles("");
  const std::string page = m_Folder / "page.html";
  Call({"run", "--report", page.c_str(), "--service", service.c_str()});
  EXPECT_THAT(m_Folder.Read("page.html"), AllOf(StartsWith("<!DOCTYPE html>"), HasSubstr("run 1")));
  SetUp();
  EXPECT_THAT(Call({"run", "--report", "-", "--service", service.c_str()}).out, StartsWith("<!DOCTYPE html>"));
  EXPECT_EQ(2, Call({"run", "--json", "--report", "-", "--service", service.c_str()}).exitCode);
}

TEST_F(KeptRun, HasNoPageWhenNothingWasHeard) {
  const std::string page = m_Folder / "page.html";
  const TvOutcome run = Call({"run", "--report", page.c_str(), "--service", "/nonexistent/service"});
  EXPECT_THAT(run.error, HasSubstr("nothing was recorded, so there is no new page"));
  EXPECT_FALSE(std::filesystem::exists(page));
}

TEST_F(RunSeries, PrintsAnObjectForEachRunAndOneWithTheFigures) {
  const std::string service = Service(kAligned);
  const TvOutcome run = Call({"run", "--json", "--times", "2", "--service", service.c_str()});
  EXPECT_EQ(0, run.exitCode) << run.error;
  std::istringstream lines(run.out);
  std::vector<Json::Value> objects;
  for (std::string line; std::getline(lines, line);) {
    objects.push_back(port::ParseJson(line));
  }
  ASSERT_EQ(3u, objects.size());
  EXPECT_DOUBLE_EQ(40.0, objects[1]["misalignment_before_ms"].asDouble()) << "it began where the first one did";
  EXPECT_EQ(2, objects[2]["succeeded"].asInt());
  EXPECT_DOUBLE_EQ(0.0, objects[2]["remaining_worst_ms"].asDouble());
}

TEST_F(RunSeries, FailsWhenOneOfItsRunsDoes) {
  const std::string service = Service("echo x >>" + m_Folder / "count" + "\n[ $(wc -l <" + m_Folder / "count" +
                                      ") = 2 ] && exit 0\n" + kAligned);
  const std::string kept = m_Folder / "kept";
  const TvOutcome run = Call({"run", "--times", "3", "--keep", kept.c_str(), "--service", service.c_str()});
  EXPECT_EQ(1, run.exitCode);
  EXPECT_THAT(run.out,
              AllOf(HasSubstr("run 1 of 3              aligned: "), HasSubstr("run 2 of 3              failed: "),
                    HasSubstr("runs                    3, 2 succeeded\n")));
  EXPECT_THAT(NamesIn(kept), UnorderedElementsAre("run_1", "run_2", "run_3"));
}

TEST_F(RunSeries, EndsWithWhatItHasWhenARunCannotBeKept) {
  const std::string kept = m_Folder / "kept";
  const std::string service = Service("touch " + kept + "/run_2\n" + kAligned);
  const TvOutcome run = Call({"run", "--times", "3", "--keep", kept.c_str(), "--service", service.c_str()});
  EXPECT_EQ(1, run.exitCode);
  EXPECT_THAT(run.error, HasSubstr("orvex-tv: " + kept + "/run_2: the run cannot be kept: "));
  EXPECT_THAT(run.out, AllOf(HasSubstr("run 2 of 3              aligned: "), HasSubstr("2 of 3, then "),
                             Not(HasSubstr("run 3 of"))));
}

TEST_F(RunSeries, ThatIsInterruptedSaysWhatItHasByThenAndLeavesNothingOfTheRest) {
  const std::string service =
      ServiceWithDebugFiles("echo x >>" + m_Folder / "count" + "\nif [ $(wc -l <" + m_Folder / "count" +
                            ") = 2 ]; then kill -INT $PPID; while :; do sleep 0.01; done; fi\n" + kAligned);
  const std::string kept = m_Folder / "kept";
  const TvOutcome run = Call({"run", "--times", "4", "--keep", kept.c_str(), "--service", service.c_str()});
  EXPECT_EQ(128 + SIGINT, run.exitCode);
  EXPECT_THAT(run.out, AllOf(HasSubstr("1 of 4, then interrupted, 1 succeeded\n"), Not(HasSubstr("run 2 of"))));
  EXPECT_THAT(NamesIn(kept), UnorderedElementsAre("run_1"));
  EXPECT_FALSE(HasTelevision());
}

TEST_F(InterruptedRun, LeavesNothingAndSaysWhichSignalItWas) {
  ::signal(SIGHUP, SIG_DFL);
  for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
    SetUp();
    const std::string service =
        ServiceWithDebugFiles("kill -" + std::to_string(number) + " $PPID\nwhile :; do sleep 0.01; done\n");
    const TvOutcome run = Call({"run", "--json", "--service", service.c_str()});
    EXPECT_EQ(128 + number, run.exitCode);
    EXPECT_THAT(run.error, HasSubstr("orvex-tv: interrupted by signal " + std::to_string(number) + " ("));
    EXPECT_THAT(run.out, AllOf(HasSubstr("\"verdict\" : \"failed\""), HasSubstr("\"dump_file\" : null")));
    EXPECT_FALSE(HasDebugFiles());
    EXPECT_FALSE(HasTelevision());
  }
}

TEST_F(InterruptedRun, HasNoPageAndNoFolderAndDoesNotComplainOfThat) {
  const std::string service = ServiceWithDebugFiles("kill -INT $PPID; while :; do sleep 0.01; done\n");
  const std::string page = m_Folder / "page.html";
  const std::string kept = m_Folder / "kept";
  const TvOutcome run = Call({"run", "--report", page.c_str(), "--keep", kept.c_str(), "--service", service.c_str()});
  EXPECT_THAT(run.error, StartsWith("orvex-tv: interrupted by signal 2 ("));
  EXPECT_FALSE(std::filesystem::exists(page));
  EXPECT_FALSE(std::filesystem::exists(kept));
}

TEST_F(InterruptedRun, DoesNotBeginWhenTheSignalCameBefore) {
  sigset_t held;
  sigset_t before;
  sigemptyset(&held);
  sigaddset(&held, SIGTERM);
  ::pthread_sigmask(SIG_BLOCK, &held, &before);
  ::raise(SIGTERM);
  const std::string service = Service("echo 'A.cpp: f(1) > ORVEX_START_SYNC'\n");
  const TvOutcome run = Call({"run", "--service", service.c_str()});
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  EXPECT_EQ(128 + SIGTERM, run.exitCode);
  EXPECT_THAT(run.out, Not(HasSubstr("run started")));
  EXPECT_FALSE(HasTelevision());
}

// Redirects standard output to `fd` until it is destroyed.
class RedirectedOutput {
public:
  explicit RedirectedOutput(int fd) : m_Before(::dup(STDOUT_FILENO)) { ::dup2(fd, STDOUT_FILENO); }
  ~RedirectedOutput() {
    ::dup2(m_Before, STDOUT_FILENO);
    ::close(m_Before);
  }
  RedirectedOutput(const RedirectedOutput&) = delete;
  RedirectedOutput& operator=(const RedirectedOutput&) = delete;

private:
  int m_Before;
};

TEST_F(InterruptedRun, EndsInOrderWhenItsOutputCannotBeWritten) {
  const std::string service = ServiceWithDebugFiles("while :; do sleep 0.01; done\n");
  const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
  testing::internal::CaptureStderr();
  int exitCode = 0;
  {
    const RedirectedOutput output(full);
    const char* const arguments[] = {"orvex-tv", "run", "--service", service.c_str()};
    exitCode = RunCommandLine(4, arguments);
  }
  ::close(full);
  EXPECT_EQ(1, exitCode);
  EXPECT_EQ("orvex-tv: standard output: cannot be written: No space left on device\n",
            testing::internal::GetCapturedStderr());
  EXPECT_FALSE(HasDebugFiles());
  EXPECT_FALSE(HasTelevision());
}

}  // namespace
}  // namespace orvex::tools
