// The contract's settings store, for a port that takes settings_files.h as it is.
#include "orvex/platform/settings.h"

#include "linux/settings_files.h"

int settings_get_int(const char* key, int* value) {
  return orvex::port::GetSetting(key, value);
}

int settings_subscribe(const char* key, SettingsChangedCallback callback, void* userData) {
  return orvex::port::SubscribeSetting(key, callback, userData);
}

int settings_unsubscribe(const char* key, SettingsChangedCallback callback) {
  return orvex::port::UnsubscribeSetting(key, callback);
}
