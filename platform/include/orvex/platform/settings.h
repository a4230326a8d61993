// Contract: the settings store. Integer values under slash-separated keys such as "db/menu/name".
#pragma once

// Results of the functions below; each function names those that it can give.
constexpr int kSettingsDone = 0;                // done
constexpr int kSettingsNoKey = -1;              // the key does not exist
constexpr int kSettingsNoInteger = -2;          // the key's value is no 32-bit decimal integer
constexpr int kSettingsUnreadable = -3;         // the store cannot be read, or cannot be watched
constexpr int kSettingsAlreadySubscribed = -1;  // the same key and callback are subscribed already
constexpr int kSettingsNotSubscribed = -1;      // there is no such subscription

// A key as a change notification names it. Opaque; valid during the callback only.
struct SettingsNode;

// Called on the main loop after the key was written, whether or not the value differs. `userData` is the subscriber's.
using SettingsChangedCallback = void (*)(const SettingsNode* node, void* userData);

// Reads `key`. Any thread; MAY be called before main().
// kSettingsDone: `*value` holds it. kSettingsNoKey, kSettingsNoInteger, kSettingsUnreadable: `*value` is untouched.
int settings_get_int(const char* key, int* value);

// Subscribes `callback` to changes of `key`; the key need not exist yet. Main loop's thread; MAY be called before
// main(), notifications then begin with the main loop. The port copies `key`; `userData` MUST live until the
// unsubscribe. A callback MUST NOT run before the call has returned. Results: kSettingsDone,
// kSettingsAlreadySubscribed, kSettingsUnreadable.
int settings_subscribe(const char* key, SettingsChangedCallback callback, void* userData);

// Cancels a subscription made with the same key and callback. Main loop's thread. No callback of it starts afterwards;
// as both run on one thread, none is running when it returns, unless it was called from that callback.
// Results: kSettingsDone, kSettingsNotSubscribed.
int settings_unsubscribe(const char* key, SettingsChangedCallback callback);

// The full key of a notification, or null when the store does not know it any more. Valid as long as the node.
const char* settings_node_name(const SettingsNode* node);
