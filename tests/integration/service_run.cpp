// Follows a running service by its log file: inotify tells of every write.
#include "integration/service_run.h"

#include <poll.h>
#include <signal.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <system_error>

#include "tv/message_client.h"
#include "world/runs/text_pattern.h"

namespace orvex::integration {
namespace {

// Beside the directory: the service must find there only what belongs to a television.
std::string OutputFileOf(const TestTelevision& television) {
  return television.GetDirectory().string() + ".output";
}

int Watch(const TestTelevision& television) {
  const int descriptor = ::inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
  if (::inotify_add_watch(descriptor, television.GetDirectory().c_str(), IN_MODIFY | IN_CREATE) < 0) {
    throw std::system_error(errno, std::generic_category(), television.GetDirectory().string());
  }
  return descriptor;
}

ProcessCommand CommandFor(const TestTelevision& television, const std::string& outputFile,
                          std::map<std::string, std::string> environment, const std::string& shell) {
  environment.emplace("ORVEX_TV", television.GetDirectory().string());
  if (!shell.empty()) {
    return {"/bin/sh", {"-c", shell, ORVEX_SERVICE_PROGRAM}, environment, outputFile, outputFile};
  }
  return {ORVEX_SERVICE_PROGRAM, {}, environment, outputFile, outputFile};
}

std::string DumpName(const char* stem, pid_t process, int number) {
  return std::string("/tmp/audio_") + stem + "_" + std::to_string(process) + "_" + std::to_string(number);
}

}  // namespace

ServiceRun::ServiceRun(const TestTelevision& television, const std::map<std::string, std::string>& environment,
                       const std::string& shell)
    : m_Television(television),
      m_Notification(Watch(television)),
      m_OutputFile(OutputFileOf(television)),
      m_Process(CommandFor(television, m_OutputFile, environment, shell)),
      m_Log(television.PathOf("service.log")) {}

ServiceRun::~ServiceRun() {
  m_Process.WaitForEnd(std::chrono::milliseconds(0));
  ::close(m_Notification);
  std::error_code ignored;
  std::filesystem::remove(m_OutputFile, ignored);
  bool isThere = true;
  for (int number = 1; isThere; ++number) {
    const auto hadDump = std::filesystem::remove_all(DumpName("dump", m_Process.GetId(), number), ignored);
    const auto hadResult = std::filesystem::remove_all(DumpName("result", m_Process.GetId(), number) + ".csv", ignored);
    isThere = hadDump > 0 || hadResult > 0;
  }
}

bool ServiceRun::WaitFor(const std::string& pattern) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (true) {
    const bool hasEnded = m_Process.HasEnded();
    m_Log.Read();
    if (FindBehind(pattern)) {
      return true;
    }
    if (hasEnded || !WaitForNews(deadline)) {
      return false;
    }
  }
}

bool ServiceRun::FindBehind(const std::string& text) {
  const runs::TextPattern pattern(text);
  while (m_Position < m_Log.GetLines().size()) {
    if (pattern.Matches(m_Log.GetLines()[m_Position++].text)) {
      return true;
    }
  }
  return false;
}

// False when the deadline has passed.
bool ServiceRun::WaitForNews(std::chrono::steady_clock::time_point deadline) const {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
  std::array<pollfd, 2> sources{pollfd{m_Notification, POLLIN, 0}, pollfd{m_Process.GetEndDescriptor(), POLLIN, 0}};
  if (left.count() <= 0 || ::poll(sources.data(), sources.size(), static_cast<int>(left.count())) == 0) {
    return false;
  }
  alignas(inotify_event) std::array<char, 4096> events{};
  while (::read(m_Notification, events.data(), events.size()) > 0) {
    // That something was written is all that matters.
  }
  return true;
}

std::string ServiceRun::Exchange(const std::string& line) const {
  return tools::ExchangeMessage(m_Television.PathOf("messages.sock").string(), line, kPatience);
}

ProcessEnding ServiceRun::WaitForEnd() {
  const ProcessEnding ending = m_Process.WaitForEnd();
  m_Log.Read();
  return ending;
}

std::string ServiceRun::ReadDump(int number) const {
  return HasRecording(number) ? ReadWholeFile(DumpName("dump", m_Process.GetId(), number)) : "";
}

std::string ServiceRun::ReadResult(int number) const {
  return HasRecording(number) ? ReadWholeFile(DumpName("result", m_Process.GetId(), number) + ".csv") : "";
}

// Other files of such a name are those of an earlier process with the same number.
bool ServiceRun::HasRecording(int number) const {
  return CountOf(m_Log.GetLines(), kIsRecording) >= number;
}

std::string ServiceRun::ReadOutput() const {
  return ReadWholeFile(m_OutputFile);
}

}  // namespace orvex::integration
