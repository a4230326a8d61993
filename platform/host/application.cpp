// The application framework on Ecore: one application's life from create step to destroy step.
#include "orvex/platform/application.h"

#include <Ecore.h>
#include <Ecore_File.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "alsa_config.h"
#include "end_signals.h"
#include "event_queue.h"
#include "exit_codes.h"
#include "late_main_loop.h"
#include "main_loop.h"
#include "message_answer.h"
#include "message_socket.h"
#include "notify_socket.h"
#include "report.h"
#include "settings_notifier.h"
#include "television.h"
#include "television_lock.h"

namespace {

namespace host = orvex::host;

// What a worker of the pool may still take: the test sound's remaining length, and room.
constexpr std::chrono::seconds kWorkerLimit{6};

bool MayInjectEvents() {
  const char* const value = std::getenv("ORVEX_TV_INJECT");
  return value != nullptr && std::string(value) == "1";
}

void OpenOrReport(host::MessageSocket& socket) {
  try {
    socket.Open();
  } catch (const std::runtime_error& problem) {
    host::ReportProblem(problem.what());
  }
}

int Refuse(const std::string& problem, int exitCode) {
  host::ReportProblem(problem);
  return exitCode;
}

// Everything between the main loop's start and its end. The socket and the notifications live in it only.
void LiveThrough(FwEflApplication& application) {
  const bool mayInject = MayInjectEvents();
  host::MessageSocket socket(host::Television::Instance().PathOf("messages.sock"), [&](const std::string& line) {
    return host::AnswerMessage(line, application, mayInject);
  });
  OpenOrReport(socket);
  ecore_file_init();
  host::MakeMainLoopLate();
  host::SettingsNotifier::Instance().Start();
  if (!application.t_OnCreate()) {
    host::RequestMainLoopEnd();
  }
  host::RunMainLoop();
  host::SettingsNotifier::Instance().Stop();
  ecore_file_shutdown();
}

}  // namespace

FwEflApplication::FwEflApplication(const char* identifier) : m_Identifier(identifier == nullptr ? "" : identifier) {
  // From here on there is a destroy step to be run.
  orvex::port::HoldEndSignals();
}

FwEflApplication::~FwEflApplication() {
  orvex::port::ReleaseEndSignals();
}

bool FwEflApplication::IfMessageReceived(const std::string& /*sender*/, const FwMessage& /*received*/,
                                         FwMessage& /*reply*/) {
  return false;
}

// This port has no event types of its own.
bool FwEventIO::t_OnEvent(FwEvent* /*event*/) {
  return false;
}

bool SendEvent(const FwEvent& event) {
  return host::EventQueue::Instance().Send(event);
}

int AppMain(int /*argc*/, char** /*argv*/, FwEflApplication* application) {
  const host::Television& television = host::Television::Instance();
  if (const std::string& problem = host::Television::InstanceProblem(); !problem.empty()) {
    return Refuse("there is no television: " + problem, host::kExitNoTelevision);
  }
  const host::TelevisionLock lock(television.GetDirectory());
  if (!lock.IsHeld()) {
    return Refuse(television.GetDirectory().string() + ": another service runs on this television; wait for its end",
                  host::kExitTelevisionInUse);
  }
  // Both change the environment, while there is one thread.
  host::TakeNotifySocketFromEnvironment();
  host::ConfigureAlsa();
  const std::string problem = application == nullptr ? "expected an application" : host::StartMainLoop();
  if (!problem.empty()) {
    return Refuse("the main loop cannot run: " + problem, host::kExitNoMainLoop);
  }
  LiveThrough(*application);
  application->t_OnDestroy();
  if (!host::DrainWorkers(kWorkerLimit)) {
    host::ReportProblem("a worker thread did not finish within 6 s; ending without it");
    // Without destructors, which that thread may still need things of; what was written to files is kept.
    std::fflush(nullptr);
    std::_Exit(host::kExitInOrder);
  }
  host::StopMainLoop();
  return host::kExitInOrder;
}

void ui_app_exit() {
  host::RequestMainLoopEnd();
}
