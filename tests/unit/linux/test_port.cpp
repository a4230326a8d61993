// A port that is nothing but the pieces.
#include "unit/linux/test_port.h"

#include <stdlib.h>
#include <unistd.h>

#include "linux/log_line.h"
#include "linux/message_answer.h"
#include "linux/message_socket.h"
#include "linux/notify_socket.h"
#include "linux/port.h"
#include "linux/run_application.h"
#include "linux/settings_files.h"
#include "linux/small_files.h"

namespace orvex::port {
namespace {

bool mayInject = false;

std::filesystem::path NewFolder() {
  constexpr const char* kParentsFolder = "ORVEX_LINUX_TEST_FOLDER";
  if (const char* const parents = getenv(kParentsFolder)) {
    return parents;
  }
  // The blanks are on purpose: a folder's name may have some.
  std::string pattern = (std::filesystem::temp_directory_path() / "orvex pieces XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    return {};
  }
  setenv(kParentsFolder, pattern.c_str(), 1);
  return pattern;
}

}  // namespace

const std::filesystem::path& TestFolder() {
  static const std::filesystem::path folder = NewFolder();
  return folder;
}

void AllowInjectedEvents(bool isAllowed) {
  mayInject = isAllowed;
}

void ReportProblem(const std::string& text) {
  system_log_print(LogBuffer::kSystem, LogPriority::kError, "test-port", "test-port: %s\n", text.c_str());
}

bool WriteLogRecord(const LogRecord& record) {
  static_cast<void>(WriteWhole(STDERR_FILENO, record.text));
  return AppendLine(TestFolder() / "service.log", LogLine(record));
}

std::filesystem::path SettingsFolder() {
  return TestFolder() / "settings";
}

std::filesystem::path EventLogFile() {
  return TestFolder() / "events.jsonl";
}

}  // namespace orvex::port

int AppMain(int /*argc*/, char** /*argv*/, FwEflApplication* application) {
  namespace port = orvex::port;
  port::TakeNotifySocketFromEnvironment();
  port::MessageSocket messages(port::TestFolder() / "messages.sock", port::AnswersOf(application, port::mayInject));
  const auto begin = [&] {
    messages.Open();
    port::StartSettingNotifications();
  };
  const auto end = [&] {
    port::StopSettingNotifications();
    messages.Close();
  };
  return port::RunApplication(application, {begin, end});
}
