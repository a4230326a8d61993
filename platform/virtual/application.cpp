// The application framework: a virtual television, and what runs beside the application on it.
#include "orvex/platform/application.h"

#include <Ecore_File.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "linux/run_application.h"
#include "virtual/alsa_config.h"
#include "virtual/exit_codes.h"
#include "virtual/late_main_loop.h"
#include "virtual/message_answer.h"
#include "virtual/message_socket.h"
#include "virtual/notify_socket.h"
#include "virtual/report.h"
#include "virtual/settings_notifier.h"
#include "virtual/television.h"
#include "virtual/television_lock.h"

namespace {

namespace virtual_tv = orvex::virtual_tv;

bool MayInjectEvents() {
  const char* const value = std::getenv("ORVEX_TV_INJECT");
  return value != nullptr && std::string(value) == "1";
}

void OpenOrReport(virtual_tv::MessageSocket& socket) {
  try {
    socket.Open();
  } catch (const std::runtime_error& problem) {
    virtual_tv::ReportProblem(problem.what());
  }
}

int Refuse(const std::string& problem, int exitCode) {
  virtual_tv::ReportProblem(problem);
  return exitCode;
}

// The socket and the notifications live as long as the main loop.
int RunOnTelevision(const virtual_tv::Television& television, FwEflApplication* application) {
  const bool mayInject = MayInjectEvents();
  virtual_tv::MessageSocket socket(television.PathOf("messages.sock"), [&](const std::string& line) {
    return virtual_tv::AnswerMessage(line, *application, mayInject);
  });
  const auto begin = [&] {
    OpenOrReport(socket);
    ecore_file_init();
    virtual_tv::MakeMainLoopLate();
    virtual_tv::SettingsNotifier::Instance().Start();
  };
  const auto end = [&] {
    virtual_tv::SettingsNotifier::Instance().Stop();
    ecore_file_shutdown();
    socket.Close();
  };
  return orvex::port::RunApplication(application, {begin, end});
}

}  // namespace

int AppMain(int /*argc*/, char** /*argv*/, FwEflApplication* application) {
  const virtual_tv::Television& television = virtual_tv::Television::Instance();
  if (const std::string& problem = virtual_tv::Television::InstanceProblem(); !problem.empty()) {
    return Refuse("there is no television: " + problem, virtual_tv::kExitNoTelevision);
  }
  const virtual_tv::TelevisionLock lock(television.GetDirectory());
  if (!lock.IsHeld()) {
    return Refuse(television.GetDirectory().string() + ": another service runs on this television; wait for its end",
                  virtual_tv::kExitTelevisionInUse);
  }
  // Both change the environment, while there is one thread.
  virtual_tv::TakeNotifySocketFromEnvironment();
  virtual_tv::ConfigureAlsa();
  return RunOnTelevision(television, application);
}
