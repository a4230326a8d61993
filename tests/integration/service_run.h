// The service as a process on a virtual television, and its log while it runs.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "integration/log_lines.h"
#include "integration/process.h"
#include "integration/test_television.h"

namespace orvex::integration {

// The line with which a recording begins; it names its files.
constexpr char kIsRecording[] = "Temp file name={s}";

class ServiceRun {
public:
  // `environment` comes on top of what names the television. `shell`, unless it is empty: what a shell does that begins
  // the service by exec "$0"; $$ is the service's process number then.
  ServiceRun(const TestTelevision& television, const std::map<std::string, std::string>& environment,
             const std::string& shell = "");
  // Ends the service and removes the files that it has left in /tmp.
  ~ServiceRun();
  ServiceRun(const ServiceRun&) = delete;
  ServiceRun& operator=(const ServiceRun&) = delete;

  // Waits until the log has a text that matches `pattern` (see runs::TextPattern), behind the one that was found
  // before. False: the service has ended without, or too much time has passed.
  bool WaitFor(const std::string& pattern);
  void Signal(int number) const { m_Process.Signal(number); }
  // Sends one line to the service's message socket and returns its reply.
  std::string Exchange(const std::string& line) const;
  ProcessEnding WaitForEnd();
  long ReadPeakMemoryKib() const { return m_Process.ReadPeakMemoryKib(); }
  void LimitMemory(long moreKib) const { m_Process.LimitMemory(moreKib); }
  // Keeps a text for whoever looks at the run afterwards.
  void Note(const std::string& text) { m_Notes.push_back(text); }
  const std::vector<std::string>& GetNotes() const { return m_Notes; }

  const TestTelevision& GetTelevision() const { return m_Television; }
  const std::vector<LogLine>& GetLines() const { return m_Log.GetLines(); }
  // What recording `number` has left.
  std::string ReadDump(int number) const;
  std::string ReadResult(int number) const;
  // What went to stdout and stderr, the log's lines included.
  std::string ReadOutput() const;

private:
  bool HasRecording(int number) const;
  bool FindBehind(const std::string& text);
  bool WaitForNews(std::chrono::steady_clock::time_point deadline) const;

  const TestTelevision& m_Television;
  int m_Notification;  // inotify
  std::string m_OutputFile;
  Process m_Process;
  LogFile m_Log;
  std::vector<std::string> m_Notes;
  std::size_t m_Position = 0;  // lines up to here have been looked at
};

}  // namespace orvex::integration
