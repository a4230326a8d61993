// Settings as files: each key is a file below the port's SettingsFolder(), which holds a decimal integer.
#pragma once

#include "orvex/platform/settings.h"

namespace orvex::port {

// The operations of the contract header, for a port that does more than that in its own: settings.cpp only calls them.
int GetSetting(const char* key, int* value);
int SubscribeSetting(const char* key, SettingsChangedCallback callback, void* userData);
int UnsubscribeSetting(const char* key, SettingsChangedCallback callback);

// Notifications come in between. Main loop's thread: `begin` and `end` of RunApplication() are the places.
void StartSettingNotifications();
void StopSettingNotifications();

}  // namespace orvex::port
