// The application framework: the main loop of ports on Linux, and what runs beside the application on it.
#include "orvex/platform/application.h"

#include "linux/alsa_redirection.h"
#include "linux/folder_lock.h"
#include "linux/message_answer.h"
#include "linux/message_socket.h"
#include "linux/notify_socket.h"
#include "linux/port.h"
#include "linux/run_application.h"
#include "linux/settings_files.h"
#include "pipewire/alsa_plugin.h"
#include "pipewire/exit_codes.h"
#include "pipewire/places.h"

namespace port = orvex::port;

int AppMain(int /*argc*/, char** /*argv*/, FwEflApplication* application) {
  const std::filesystem::path& place = orvex::pipewire::RunPlace();
  const port::FolderLock lock(place);
  if (!lock.IsHeld()) {
    port::ReportProblem(place.string() + ": another service runs in this session; wait for its end");
    return orvex::pipewire::kExitInUse;
  }
  // Both change the environment, while there is one thread.
  port::TakeNotifySocketFromEnvironment();
  port::RedirectAlsa(place / "alsa.conf", orvex::pipewire::AlsaConfiguration());
  port::MessageSocket messages(place / "messages.sock", port::AnswersOf(application));
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
