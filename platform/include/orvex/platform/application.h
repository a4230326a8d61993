// Contract: the application framework. Main loop, lifecycle, events, alarms and inter-application messages.
//
// Words: MUST binds the side that is named; MAY is leave, not promise. "The main loop" is the thread that called
// AppMain(). "The port" is whatever implements this header on a television or on a computer.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <json/value.h>

class FwEflApplication;

// Where events are addressed to. A value that points at its application, owned by it.
//
// Thread: may be read from any thread. Lifetime: that of the application object; events addressed to a receiver whose
// application is gone are an error of the caller.
class FwEventReceiver {
public:
  explicit FwEventReceiver(FwEflApplication& application) : m_Application(application) {}
  FwEventReceiver(const FwEventReceiver&) = delete;
  FwEventReceiver& operator=(const FwEventReceiver&) = delete;

  FwEflApplication& GetApplication() const { return m_Application; }

private:
  FwEflApplication& m_Application;
};

// One framework event: an integer type, the receiver and no payload.
class FwEvent {
public:
  // `receiver` may be null: such an event is accepted by SendEvent() and delivered to nobody.
  FwEvent(std::int32_t type, FwEventReceiver* receiver) : m_Type(type), m_Receiver(receiver) {}

  std::int32_t GetType() const { return m_Type; }
  FwEventReceiver* GetReceiver() const { return m_Receiver; }

private:
  std::int32_t m_Type;
  FwEventReceiver* m_Receiver;
};

// Queues a copy of `event` for its receiver's t_OnEvent().
//
// Thread: any, the main loop included. The port MUST NOT deliver inside the call, MUST deliver on the main loop, one
// event at a time, and MUST keep one order over all senders: the order in which the calls were made. Once the main loop
// was asked to end, queued and new events MUST be dropped, so that nothing runs between that request and t_OnDestroy().
//
// Result: true when queued or addressed to nobody; false when it was dropped because the main loop is ending, is not
// running yet and cannot queue, or memory is exhausted.
bool SendEvent(const FwEvent& event);

// The framework's own share of an application's events. A port MAY consume event types of its own here.
class FwEventIO {
public:
  // Main loop only. True: the framework has consumed the event, the application MUST NOT act on it.
  bool t_OnEvent(FwEvent* event);
};

// A message from another application, or the reply to it.
struct FwMessage {
  std::string type;  // UTF-8, may be empty
  Json::Value body;  // an object, or null when the sender gave none
};

// Base class of a service. A port calls the virtual operations on the main loop only, in this order: t_OnCreate() once,
// then events, messages and notifications as they come, then t_OnDestroy() once, also when t_OnCreate() answered false.
class FwEflApplication : public FwEventIO {
public:
  // `identifier`: the application's reverse-domain name; the port copies it. MAY be called before main().
  explicit FwEflApplication(const char* identifier);
  FwEflApplication(const FwEflApplication&) = delete;
  FwEflApplication& operator=(const FwEflApplication&) = delete;

  virtual ~FwEflApplication();
  // Does the application draw a window?
  virtual bool t_HasWindow() = 0;
  // A message from another application. `sender` names it, empty when unknown. `received` and `reply` are valid during
  // the call only; what stands in `reply` afterwards is what the sender gets. True: the message was taken.
  virtual bool IfMessageReceived(const std::string& sender, const FwMessage& received, FwMessage& reply);
  // May the framework freeze the process while the television does something else?
  virtual bool t_IsSuspendable() = 0;
  // Does the application run without having been brought to the front?
  virtual bool t_RunsInBackground() = 0;
  // The create step. False: the port ends the main loop at once.
  virtual bool t_OnCreate() = 0;
  virtual void t_OnPause() {}
  virtual void t_OnResume() {}
  virtual void t_OnRelaunch() {}
  // The destroy step, after the main loop was asked to end.
  virtual void t_OnDestroy() = 0;
  virtual void t_OnLowMemory() {}
  // One event. The answer tells whether it was taken; a port MAY ignore it.
  virtual bool t_OnEvent(FwEvent* event) = 0;
  virtual void t_OnLanguageChanged() {}

  // The address of this application's events; valid as long as the object. Any thread.
  FwEventReceiver* GetEventReceiver() { return &m_EventReceiver; }
  const std::string& GetIdentifier() const { return m_Identifier; }

private:
  std::string m_Identifier;
  FwEventReceiver m_EventReceiver{*this};
};

// A periodic alarm on the main loop. All operations: main loop only.
class FwAlarm {
public:
  // Called once per period, on the main loop, never inside a call of this class and not once the main loop was asked to
  // end. The answer tells whether the work succeeded; a port MUST go on with the next period either way. The callback
  // MAY call Destroy().
  using Callback = bool (*)(void* userData);
  // Repeat count of an alarm that goes on until it is destroyed.
  static constexpr int kRepeatForever = -1;

  FwAlarm();
  ~FwAlarm();  // MUST be safe on an active alarm: it ends it.
  FwAlarm(const FwAlarm&) = delete;
  FwAlarm& operator=(const FwAlarm&) = delete;

  // Starts the alarm: first call after one period. `periodMs` 1 to 4294967295 milliseconds, `repeatCount` at least 1 or
  // kRepeatForever. False: the alarm could not be made, or is active already; it then stays as it was.
  bool Create(FwEventIO* eventInput, std::uint32_t periodMs, int repeatCount);
  // `userData` is handed back as it is; the caller keeps it alive as long as the alarm. MAY be called before or after
  // Create().
  void SetAlarmCallback(Callback callback, void* userData);
  // Ends an active alarm; no callback runs after it returned. Calling it on an inactive alarm is an error of the
  // caller.
  void Destroy();
  // True from a successful Create() to Destroy() or to the last repetition, whose callback MAY start it anew.
  bool IsActive() const;

private:
  struct Port;  // defined by the port
  std::unique_ptr<Port> m_Port;
};

// Runs the application: t_OnCreate(), the main loop until it is asked to end, t_OnDestroy(). Called once, from main().
//
// SIGTERM, SIGINT, SIGHUP and SIGQUIT MUST end the main loop as ui_app_exit() does, so that the destroy step runs; also
// one that came before the main loop ran, from the construction of the application object on. A signal that the process
// was started to ignore stays ignored. A closed stdout or stderr MUST NOT end the process.
// Worker threads of the main loop's pool that still run after t_OnDestroy() MUST be let finish, and their end or cancel
// functions run on this thread, before AppMain() returns: within 6 s. A worker that takes longer MUST NOT keep the
// process: the port then ends it at once with the same exit code.
//
// Result: the process's exit code; 0 when the main loop ran and ended in order, another value when it could not run.
int AppMain(int argc, char** argv, FwEflApplication* application);

// Asks the main loop to end. Main loop only. The port then runs t_OnDestroy(), once, from AppMain(), after the caller
// has returned; a second request changes nothing.
void ui_app_exit();
