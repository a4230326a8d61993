// The application framework on Ecore: one application's life from create step to destroy step.
#include "orvex/platform/application.h"

#include <Ecore.h>
#include <Ecore_File.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "linux/end_signals.h"
#include "virtual/alsa_config.h"
#include "virtual/event_queue.h"
#include "virtual/exit_codes.h"
#include "virtual/late_main_loop.h"
#include "virtual/main_loop.h"
#include "virtual/message_answer.h"
#include "virtual/message_socket.h"
#include "virtual/notify_socket.h"
#include "virtual/report.h"
#include "virtual/settings_notifier.h"
#include "virtual/television.h"
#include "virtual/television_lock.h"

namespace {

namespace virtual_tv = orvex::virtual_tv;

// What a worker of the pool may still take: the test sound's remaining length, and room.
constexpr std::chrono::seconds kWorkerLimit{6};

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

// Everything between the main loop's start and its end. The socket and the notifications live in it only.
void LiveThrough(FwEflApplication& application) {
  const bool mayInject = MayInjectEvents();
  virtual_tv::MessageSocket socket(
      virtual_tv::Television::Instance().PathOf("messages.sock"),
      [&](const std::string& line) { return virtual_tv::AnswerMessage(line, application, mayInject); });
  OpenOrReport(socket);
  ecore_file_init();
  virtual_tv::MakeMainLoopLate();
  virtual_tv::SettingsNotifier::Instance().Start();
  if (!application.t_OnCreate()) {
    virtual_tv::RequestMainLoopEnd();
  }
  virtual_tv::RunMainLoop();
  virtual_tv::SettingsNotifier::Instance().Stop();
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
  return virtual_tv::EventQueue::Instance().Send(event);
}

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
  const std::string problem = application == nullptr ? "expected an application" : virtual_tv::StartMainLoop();
  if (!problem.empty()) {
    return Refuse("the main loop cannot run: " + problem, virtual_tv::kExitNoMainLoop);
  }
  LiveThrough(*application);
  application->t_OnDestroy();
  if (!virtual_tv::DrainWorkers(kWorkerLimit)) {
    virtual_tv::ReportProblem("a worker thread did not finish within 6 s; ending without it");
    // Without destructors, which that thread may still need things of; what was written to files is kept.
    std::fflush(nullptr);
    std::_Exit(virtual_tv::kExitInOrder);
  }
  virtual_tv::StopMainLoop();
  return virtual_tv::kExitInOrder;
}

void ui_app_exit() {
  virtual_tv::RequestMainLoopEnd();
}
