// No settings store.
#include "orvex/platform/settings.h"

int settings_get_int(const char* /*key*/, int* /*value*/) {
  return kSettingsUnreadable;
}

int settings_subscribe(const char* /*key*/, SettingsChangedCallback /*callback*/, void* /*userData*/) {
  return kSettingsUnreadable;
}

int settings_unsubscribe(const char* /*key*/, SettingsChangedCallback /*callback*/) {
  return kSettingsNotSubscribed;
}

const char* settings_node_name(const SettingsNode* /*node*/) {
  return nullptr;
}
