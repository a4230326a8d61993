// The service on the smallest port, where every service of a television is missing: what it logs, and that it ends in
// order.
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <regex>
#include <system_error>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "integration/log_lines.h"
#include "integration/process.h"

namespace orvex::integration {
namespace {

// What fails where every service of a television is missing, in order.
const Lines kFailures{"E2 Failed to register Orvex Service in gravet!",
                      "E2 Create Resolution Control failed",
                      "E2 Can not get Source Control.",
                      "E2 (r=-3) get defaultdisclaimeragree failed",
                      "E2 audio_control is null",
                      "E2 audio_control is null",
                      "E2 [ERROR] Fail bt_hid_set_audio_data_receive_cb()",
                      "E2 fail bt recoding",
                      "E2 audio_control is null",
                      "E2 (r=-3) get defaultdisclaimeragree failed",
                      "E2 Already ready state!!"};

// One record, "main I Orvex: file: function(line) > colour text reset", as "kind text" (see LogLine).
std::string KindAndText(const std::string& record) {
  static const std::regex form(
      "(main I|main E|system E) Orvex: \\w+\\.(?:cpp|h): \\w+\\(\\d+\\) > "
      "\033\\[(3[12])m([^\033]*)\033\\[0m\n");
  std::smatch match;
  if (!std::regex_match(record, match, form) || (match[1] == "main I") != (match[2] == "32")) {
    return "no record: " + record;
  }
  return (match[1] == "system E" ? "E2 " : match[1].str().substr(5) + "0 ") + match[3].str();
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

  // Reads records up to this one, or to the end.
  void ReadUpTo(const std::string& last) {
    char record[4096];
    for (ssize_t length = 0; (length = ::read(m_Pipe.read, record, sizeof record)) > 0;) {
      lines.push_back(KindAndText({record, static_cast<std::size_t>(length)}));
      if (lines.back() == last) {
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

Lines FailuresIn(const Lines& lines) {
  Lines failures;
  std::copy_if(lines.begin(), lines.end(), std::back_inserter(failures),
               [](const std::string& line) { return line.rfind("I0 ", 0) != 0 && line.rfind("E0 ", 0) != 0; });
  return failures;
}

// The recorder's failure ends the run; the running time is far from over.
TEST(MinimalPort, TheServiceLogsWhatItMissesAndEndsInOrder) {
  MinimalService service;
  service.ReadToTheEnd();
  EXPECT_EQ("", Difference(FailuresIn(service.lines), kFailures));
  EXPECT_EQ("", MissingInOrder(service.lines,
                               {"I0 text = {device=none|-1;source=0;videoinfo=none|0|0;codec=0}", "I0 ORVEX_EXIT",
                                "I0 Destroy", "I0 text = {result=fail;delay=0;du={u};terminate=bt_fail}"}));
  EXPECT_EQ("I0 ", service.lines.back());
  EXPECT_EQ("exit code 0", service.Ending());
}

class MinimalPortAtSignal : public testing::TestWithParam<int> {};

// Two records on, the service is still in its create step. How much of the run's start gets in between is open.
TEST_P(MinimalPortAtSignal, TheServiceEndsInOrderBeforeItsRunHasFailed) {
  MinimalService service;
  service.ReadUpTo("I0 Orvex Service Create!");
  service.Signal(GetParam());
  service.ReadToTheEnd();
  EXPECT_EQ(
      "", MissingInOrder(service.lines, {"I0 Orvex Service Create Done", "I0 Destroy", "I0 text = {result=fail;{s}}"}));
  EXPECT_EQ("I0 ", service.lines.back());
  EXPECT_THAT(service.lines, testing::Not(testing::Contains("I0 ORVEX_EXIT")));
  EXPECT_EQ("exit code 0", service.Ending());
}

INSTANTIATE_TEST_SUITE_P(Of, MinimalPortAtSignal, testing::Values(SIGTERM, SIGINT, SIGHUP, SIGQUIT),
                         [](const auto& signal) { return std::string("SIG") + sigabbrev_np(signal.param); });

}  // namespace
}  // namespace orvex::integration
