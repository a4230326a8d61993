// The service on the smallest port, where every service of a television is missing: what it logs, and that it ends in
// order.
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <regex>
#include <system_error>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/log_lines.h"
#include "integration/process.h"

namespace orvex::integration {
namespace {

using Lines = std::vector<std::string>;

const Lines kCreated{"I SetStatusText value: ",
                     "I m_StatusStr: < > ",
                     "I SetCurrentDelayText value: -1",
                     "I m_CurrentSpdifStr: SPDIF Delay Setting : 4294967295",
                     "I SetAudioDealyText value: -1",
                     "I m_SyncSpdifStr: After Auto-sync Delay Setting : 4294967295",
                     "I SetDiffTimeText value: -1",
                     "I m_DiffStr: Diff Delay Time : ",
                     "I SetElapsedTimeText value: -1",
                     "I m_ElapsedTimeStr: Elapsed Time : ",
                     "I Orvex Service Create!",
                     "F Failed to register Orvex Service in gravet!",
                     "I Create",
                     "I TV speaker mute status.[0]",
                     "I Orvex Service Create Done"};

const Lines kStarted{"E pEvent.type 10000",
                     "I ORVEX_START_SYNC",
                     "I activity info is null",
                     "F Create Resolution Control failed",
                     "F Can not get Source Control.",
                     "I source = 0",
                     "I type = 0",
                     "I text = {device=none|-1;source=0;videoinfo=none|0|0;codec=0}",
                     "F (r=-3) get defaultdisclaimeragree failed",
                     "I [singleton] new instance",
                     "F audio_control is null",
                     "E spdif out delay = 0",
                     "I avoc delay = 0",
                     "I *:*",
                     "E pEvent.type 10004",
                     "I ORVEX_START_BT_RECODING",
                     "I Start Orvex[1]",
                     "I start BT Recoder",
                     "I m_StartBT",
                     "F audio_control is null",
                     "E spdif out delay = 0",
                     "E main out delay = 0, avoc delay = 0",
                     "F [ERROR] Fail bt_hid_set_audio_data_receive_cb()",
                     "F fail bt recoding"};

// The recorder's failure ends the run; the running time is far from over.
const Lines kExit{"E pEvent.type 10007", "I ORVEX_EXIT"};

const Lines kDestroyed{"I Destroy",
                       "F audio_control is null",
                       "E spdif out delay = 0",
                       "I avoc delay = 0",
                       "I *:*",
                       "I text = {result=fail;delay=0;du=*;terminate=bt_fail}",
                       "F (r=-3) get defaultdisclaimeragree failed",
                       "I Stop Orvex[3]",
                       "I stop BT Recoder",
                       "F Already ready state!!",
                       "I stop Sound Player",
                       "I Sound Player is not started",
                       "I "};

// One record, "main I Orvex: file: function(line) > colour text reset", as "kind text"; F: error in the system buffer.
std::string KindAndText(const std::string& record) {
  static const std::regex form(
      "(main I|main E|system E) Orvex: \\w+\\.(?:cpp|h): \\w+\\(\\d+\\) > "
      "\033\\[(3[12])m([^\033]*)\033\\[0m\n");
  std::smatch match;
  if (!std::regex_match(record, match, form) || (match[1] == "main I") != (match[2] == "32")) {
    return "no record: " + record;
  }
  return (match[1] == "system E" ? "F " : match[1].str().substr(5) + " ") + match[3].str();
}

// The service on a stderr that holds one record: it cannot log a third one before the first is read.
class MinimalService {
public:
  MinimalService() {
    if (::fcntl(m_Pipe.read, F_SETPIPE_SZ, 1) != static_cast<int>(::sysconf(_SC_PAGESIZE))) {
      throw std::system_error(errno, std::generic_category(), "a pipe of one page");
    }
    m_Process.emplace(ProcessCommand{ORVEX_MINIMAL_SERVICE_PROGRAM, {}, {}, "/dev/null", {}, m_Pipe.write});
    ::close(m_Pipe.write);
  }
  ~MinimalService() { ::close(m_Pipe.read); }
  MinimalService(const MinimalService&) = delete;
  MinimalService& operator=(const MinimalService&) = delete;

  // Reads records up to the one that matches `pattern`, or to the end.
  void ReadUpTo(const std::string& pattern) {
    char record[4096];
    for (ssize_t length = 0; (length = ::read(m_Pipe.read, record, sizeof record)) > 0;) {
      lines.push_back(KindAndText({record, static_cast<std::size_t>(length)}));
      if (MatchesPattern(lines.back(), pattern)) {
        return;
      }
    }
  }
  void ReadToTheEnd() { ReadUpTo("the end of the log"); }
  void Signal(int number) const { m_Process->Signal(number); }
  std::string Ending() { return Describe(m_Process->WaitForEnd()); }

  Lines lines;

private:
  struct Pipe {
    Pipe() {
      int ends[2];
      if (::pipe2(ends, O_DIRECT | O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "a pipe of records");
      }
      read = ends[0];
      write = ends[1];
    }
    int read = -1;
    int write = -1;
  };

  Pipe m_Pipe;
  std::optional<Process> m_Process;
};

Lines Together(const std::vector<Lines>& stretches) {
  Lines lines;
  for (const Lines& stretch : stretches) {
    lines.insert(lines.end(), stretch.begin(), stretch.end());
  }
  return lines;
}

TEST(MinimalPort, TheServiceLogsWhatItMissesAndEndsInOrder) {
  MinimalService service;
  service.ReadToTheEnd();
  EXPECT_EQ("", Difference(service.lines, Together({kCreated, kStarted, kExit, kDestroyed})));
  EXPECT_EQ("exit code 0", service.Ending());
}

class MinimalPortAtSignal : public testing::TestWithParam<int> {};

// Two records on, the service is still in its create step. How much of the run's start gets in between is open.
TEST_P(MinimalPortAtSignal, TheServiceEndsInOrderBeforeItsRunHasFailed) {
  MinimalService service;
  service.ReadUpTo("I Orvex Service Create!");
  service.Signal(GetParam());
  service.ReadToTheEnd();
  EXPECT_EQ("", MissingInOrder(service.lines, Together({kCreated, {"I Destroy", "I text = {result=fail;*}"}})));
  EXPECT_EQ("I ", service.lines.back());
  EXPECT_THAT(service.lines, testing::Not(testing::Contains("I ORVEX_EXIT")));
  EXPECT_EQ("exit code 0", service.Ending());
}

INSTANTIATE_TEST_SUITE_P(Of, MinimalPortAtSignal, testing::Values(SIGTERM, SIGINT, SIGHUP, SIGQUIT),
                         [](const auto& signal) { return std::string("SIG") + sigabbrev_np(signal.param); });

}  // namespace
}  // namespace orvex::integration
