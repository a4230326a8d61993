// A program as a child process: its own environment and output files, waited for with a deadline, never left behind.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvex::integration {

// Far longer than anything here lasts, also on a busy machine.
constexpr std::chrono::seconds kPatience{45};

struct ProcessCommand {
  std::filesystem::path program;
  std::vector<std::string> arguments;
  std::map<std::string, std::string> environment;  // on top of this process's, without its ORVEX_ variables
  std::filesystem::path output;                    // file that takes stdout
  std::filesystem::path errors;                    // file that takes stderr
  int errorsDescriptor = -1;                       // takes stderr instead, unless -1
  int outputDescriptor = -1;                       // takes stdout instead, unless -1
  std::vector<int> blockedSignals{};               // that wait for the program from its first moment on
};

struct ProcessEnding {
  std::optional<int> exitCode;    // empty: a signal ended it
  int signal = 0;                 // 0: none
  bool isLate = false;            // it did not end in time and was killed
  double processorSeconds = 0.0;  // user and system
};

// As a phrase: "exit code 0", "signal 11", "killed, as it did not end".
std::string Describe(const ProcessEnding& ending);

class Process {
public:
  // Throws std::system_error when the program cannot be started.
  explicit Process(const ProcessCommand& command);
  ~Process();  // kills it if it still runs
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  pid_t GetId() const { return m_Id; }
  // Readable once the process has ended.
  int GetEndDescriptor() const { return m_EndDescriptor; }
  // Largest resident memory so far; -1 when the process has ended.
  long ReadPeakMemoryKib() const;
  // From now on it gets no more than this, on top of what it has. Memory is counted as addresses, used or not.
  void LimitMemory(long moreKib) const;
  void Signal(int number) const;
  bool HasEnded() const;
  // Returns when it has ended; after `patience` it is killed.
  ProcessEnding WaitForEnd(std::chrono::milliseconds patience = kPatience);

private:
  // A value of the process's status; -1 when it has ended.
  long ReadStatusKib(const std::string& name) const;

  pid_t m_Id = -1;
  int m_EndDescriptor = -1;
  std::optional<ProcessEnding> m_Ending;
};

}  // namespace orvex::integration
