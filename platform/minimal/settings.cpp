// No settings store.
#include "orvex/platform/settings.h"

namespace {

constexpr int kNoSubscription = -1;
constexpr int kNoStore = -3;

}  // namespace

int settings_get_int(const char* /*key*/, int* /*value*/) {
  return kNoStore;
}

int settings_subscribe(const char* /*key*/, SettingsChangedCallback /*callback*/, void* /*userData*/) {
  return kNoStore;
}

int settings_unsubscribe(const char* /*key*/, SettingsChangedCallback /*callback*/) {
  return kNoSubscription;
}

const char* settings_node_name(const SettingsNode* /*node*/) {
  return nullptr;
}
