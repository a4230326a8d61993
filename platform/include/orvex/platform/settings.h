// Contract: the settings store. Integer values under slash-separated keys such as "db/menu/name", written by other
// applications and read by the service, which writes none.
//
// The service reads whether the user has agreed to telemetry, and watches that key and the flag of the optical output.
// The flag's change ends a run, so a notification that nobody has caused by a write ends every run.
#pragma once

// Results of the functions below; each function names those that it can give. -1 has one meaning per function.

// The value was read, or the subscription was made or cancelled.
constexpr int kSettingsDone = 0;
// settings_get_int(): the key does not exist.
constexpr int kSettingsNoKey = -1;
// settings_get_int(): the key's value is no 32-bit decimal integer. Nothing is cut off or rounded.
constexpr int kSettingsNoInteger = -2;
// The store cannot be read, or cannot be watched.
constexpr int kSettingsUnreadable = -3;
// settings_subscribe(): the same key and callback are subscribed already, with whatever `userData`.
constexpr int kSettingsAlreadySubscribed = -1;
// settings_unsubscribe(): there is no subscription with this key and callback.
constexpr int kSettingsNotSubscribed = -1;

// A key as a change notification names it. Opaque; valid during the callback only.
struct SettingsNode;

// Called on the main loop after the key was written, whether or not the value differs, and for no other key.
// `userData` is the subscriber's. Not called for writes from before the subscription, and not once the main loop was
// asked to end.
//
// The callback MAY
// - do what every handler of the main loop may do (application.h),
// - read this key and others,
// - subscribe, and cancel a subscription, its own included; one that is cancelled is not called any more, even for a
//   write that has been seen already.
// The callback MUST NOT
// - do what no handler of the main loop may do (application.h),
// - keep the node or its name after it has returned.
using SettingsChangedCallback = void (*)(const SettingsNode* node, void* userData);

// Reads `key`: the value that was written last, by whichever process. Any thread; MAY be called before main().
// Results: kSettingsDone (`*value` holds it); kSettingsNoKey, kSettingsNoInteger, kSettingsUnreadable (`*value` is
// untouched).
int settings_get_int(const char* key, int* value);

// Subscribes `callback` to changes of `key`; the key need not exist yet. Main loop's thread; MAY be called before
// main(), notifications then begin with the main loop. The port copies `key`; `userData` MUST live until the
// unsubscribe. A callback MUST NOT run before the call has returned, and a port MUST NOT replay the present value. One
// key MAY have several subscribers, each with a callback of its own; all of them are called.
// Results: kSettingsDone, kSettingsAlreadySubscribed, kSettingsUnreadable.
int settings_subscribe(const char* key, SettingsChangedCallback callback, void* userData);

// Cancels a subscription made with the same key and callback. Main loop's thread. No callback of it starts afterwards;
// as both run on one thread, none is running when it returns, unless it was called from that callback.
// Results: kSettingsDone, kSettingsNotSubscribed.
int settings_unsubscribe(const char* key, SettingsChangedCallback callback);

// The full key of a notification, or null when the store does not know it any more. Valid as long as the node. A port
// MUST NOT answer null for a key that it knows: the service makes a text of the answer without a look.
const char* settings_node_name(const SettingsNode* node);
