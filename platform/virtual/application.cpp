// The application framework: a virtual television, and what runs beside the application on it.
#include "orvex/platform/application.h"

#include <cstdlib>
#include <string>

#include "linux/folder_lock.h"
#include "linux/message_answer.h"
#include "linux/message_socket.h"
#include "linux/notify_socket.h"
#include "linux/port.h"
#include "linux/run_application.h"
#include "linux/settings_files.h"
#include "virtual/alsa_config.h"
#include "virtual/exit_codes.h"
#include "virtual/last_run.h"
#include "virtual/late_main_loop.h"
#include "virtual/television.h"

namespace {

namespace port = orvex::port;
namespace virtual_tv = orvex::virtual_tv;

bool MayInjectEvents() {
  const char* const value = std::getenv("ORVEX_TV_INJECT");
  return value != nullptr && std::string(value) == "1";
}

int Refuse(const std::string& problem, int exitCode) {
  port::ReportProblem(problem);
  return exitCode;
}

// The socket and the notifications live as long as the main loop.
int RunOnTelevision(const virtual_tv::Television& television, FwEflApplication* application) {
  port::MessageSocket socket(television.PathOf("messages.sock"), port::AnswersOf(application, MayInjectEvents()));
  const auto begin = [&] {
    socket.Open();
    virtual_tv::MakeMainLoopLate();
    port::StartSettingNotifications();
  };
  const auto end = [&] {
    port::StopSettingNotifications();
    socket.Close();
  };
  return port::RunApplication(application, {begin, end});
}

}  // namespace

int AppMain(int /*argc*/, char** /*argv*/, FwEflApplication* application) {
  const virtual_tv::Television& television = virtual_tv::Television::Instance();
  if (const std::string& problem = virtual_tv::Television::InstanceProblem(); !problem.empty()) {
    return Refuse("there is no television: " + problem, virtual_tv::kExitNoTelevision);
  }
  const port::FolderLock lock(television.GetDirectory());
  if (!lock.IsHeld()) {
    return Refuse(television.GetDirectory().string() + ": another service runs on this television; wait for its end",
                  virtual_tv::kExitTelevisionInUse);
  }
  // Both change the environment, while there is one thread.
  port::TakeNotifySocketFromEnvironment();
  virtual_tv::ConfigureAlsa();
  virtual_tv::BeginLastRun();
  return RunOnTelevision(television, application);
}
