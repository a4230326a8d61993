// Contract: the application framework. Main loop, lifecycle, events, alarms and inter-application messages.
//
// Words: MUST binds the side that is named; MAY is leave, not promise. "The main loop" is the thread that called
// AppMain(). "The port" is whatever implements this header on a television or on a computer.
//
// The main loop is Ecore's: the service uses Ecore's timers and its pool of workers besides this header, and their
// functions run on the main loop too.
//
// Handlers are what the port calls on the main loop: the virtual operations of FwEflApplication, the callback of an
// alarm, and the callback of a settings subscription (settings.h). They run one at a time, never inside a call that the
// application makes, but for AppMain(). Every handler MAY
// - call every operation that its header allows on the main loop,
// - send events, which are delivered after it has returned,
// - create and destroy alarms, subscribe to settings and unsubscribe from them,
// - ask the main loop to end, after which no further event, message, alarm or notification comes,
// - block for as long as the remote control or the sound device takes; all else on the main loop waits meanwhile, the
//   notification of the watchdog included.
// A handler MUST NOT
// - wait for an event, a message, an alarm or a notification: none is delivered before it has returned,
// - keep a pointer or reference that it was handed after it has returned, but for `userData`,
// - throw.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <json/value.h>

class FwEflApplication;

// Where events are addressed to. It belongs to its application and leads to it.
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

// One framework event: an integer type, the receiver and no payload. The types are the application's own.
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
// Thread: any, the main loop included.
//
// The port MUST
// - deliver on the main loop, one event at a time,
// - keep one order over all senders, the order in which the calls were made: one queue for all threads,
// - drop queued and new events once the main loop was asked to end, so that nothing runs between that request and
//   t_OnDestroy().
// The port MUST NOT deliver inside the call, also not when the main loop itself sends. Ecore's
// ecore_main_loop_thread_safe_call_async() does that on the main loop and is no queue.
//
// An event that was sent before the main loop runs is refused, or delivered after t_OnCreate().
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
  // UTF-8, may be empty.
  std::string type;
  // An object as a rule, null when the sender gave none. A port passes on whatever JSON the sender gave.
  Json::Value body;
};

// Base class of a service. A port calls the virtual operations on the main loop only, in this order: t_OnCreate() once,
// then events, messages and notifications as they come, then t_OnDestroy() once, also when t_OnCreate() answered false.
//
// The virtual operations, their order and their types are the layout of the framework's virtual table, which real
// televisions link against: none is left out, added or moved. The ones that no port here calls exist for that table:
// t_HasWindow(), t_IsSuspendable(), t_RunsInBackground(), t_OnPause(), t_OnResume(), t_OnRelaunch(), t_OnLowMemory()
// and t_OnLanguageChanged().
class FwEflApplication : public FwEventIO {
public:
  // `identifier`: the application's reverse-domain name; the port copies it. MAY be called before main(). From here on
  // a termination signal leads to the destroy step; AppMain() says more.
  explicit FwEflApplication(const char* identifier);
  FwEflApplication(const FwEflApplication&) = delete;
  FwEflApplication& operator=(const FwEflApplication&) = delete;

  virtual ~FwEflApplication();
  // Does the application draw a window? For the framework's table: no port here calls it.
  virtual bool t_HasWindow() = 0;
  // A message from another application. `sender` names it, empty when unknown. Messages come one at a time, those of
  // one sender in their order, each with a reply of its own. True: the message was taken.
  // MAY, beside what every handler may:
  // - fill `reply`: what stands there afterwards is what the sender gets,
  // - leave `reply` as it is: the sender gets an empty one,
  // - ask the main loop to end: the reply MUST reach the sender all the same.
  // MUST NOT, beside what no handler must:
  // - keep `sender`, `received` or `reply`, which are valid during the call only,
  // - put the reply off: what is not there when the call returns is not sent.
  virtual bool IfMessageReceived(const std::string& sender, const FwMessage& received, FwMessage& reply);
  // May the framework freeze the process while the television does something else? For the framework's table.
  virtual bool t_IsSuspendable() = 0;
  // Does the application run without having been brought to the front? For the framework's table.
  virtual bool t_RunsInBackground() = 0;
  // The create step. False: the port ends the main loop at once.
  virtual bool t_OnCreate() = 0;
  // The application leaves the front, comes back to it, and is started while it runs. For the framework's table.
  virtual void t_OnPause() {}
  virtual void t_OnResume() {}
  virtual void t_OnRelaunch() {}
  // The destroy step, after the main loop was asked to end.
  virtual void t_OnDestroy() = 0;
  // The television runs out of memory. For the framework's table.
  virtual void t_OnLowMemory() {}
  // One event. The answer tells whether it was taken; a port MAY ignore it.
  // MAY, beside what every handler may:
  // - send events to its own application: they come after those that are queued already.
  // MUST NOT, beside what no handler must:
  // - keep `event`, which is the port's copy and valid during the call only,
  // - act on an event that FwEventIO::t_OnEvent() has consumed.
  virtual bool t_OnEvent(FwEvent* event) = 0;
  // The user has chosen another language. For the framework's table.
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
  // end. The answer tells whether the work succeeded; a port MUST go on with the next period either way.
  // The callback MAY, beside what every handler may:
  // - destroy its own alarm,
  // - in the last repetition, create its own alarm anew.
  // The callback MUST NOT, beside what no handler must:
  // - count on its answer: false neither ends the alarm nor repeats the call.
  using Callback = bool (*)(void* userData);
  // Repeat count of an alarm that goes on until it is destroyed.
  static constexpr int kRepeatForever = -1;

  FwAlarm();
  // MUST be safe on an active alarm: it ends it.
  ~FwAlarm();
  FwAlarm(const FwAlarm&) = delete;
  FwAlarm& operator=(const FwAlarm&) = delete;

  // Starts the alarm: first call after one period. `periodMs` 1 to 4294967295 milliseconds, `repeatCount` at least 1 or
  // kRepeatForever. `eventInput` is the application, for the framework; no port here uses it.
  // False: the alarm could not be made, or is active already; it then stays as it was.
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
  // Defined by the port.
  struct Port;
  std::unique_ptr<Port> m_Port;
};

// Runs the application: t_OnCreate(), the main loop until it is asked to end, t_OnDestroy(). Called once, from main().
//
// Signals: SIGTERM, SIGINT, SIGHUP and SIGQUIT MUST end the main loop as ui_app_exit() does, so that the destroy step
// runs; also one that came before the main loop ran, from the construction of the application object on. Without it the
// speaker stays as the service has set it. One that comes in the destroy step MUST NOT repeat it. A signal that the
// process was started to ignore stays ignored. A closed stdout or stderr MUST NOT end the process. Ecore lets signals
// through while it begins, and its own handler changes errno: the port holds the signals back and reads them from a
// descriptor.
//
// Workers: threads of the main loop's pool that still run after t_OnDestroy() MUST be let finish, and their end or
// cancel functions run on this thread, before AppMain() returns: within 6 s. No event is taken and no alarm goes off
// meanwhile. A worker that takes longer MUST NOT keep the process: the port then ends it at once with the same exit
// code.
//
// The pieces in platform/linux do all of this for a port whose main loop is Ecore's.
//
// Result: the process's exit code; 0 when the main loop ran and ended in order, another value when it could not run.
int AppMain(int argc, char** argv, FwEflApplication* application);

// Asks the main loop to end. Main loop only. The port then runs t_OnDestroy(), once, from AppMain(), after the caller
// has returned; a second request changes nothing.
void ui_app_exit();
