// The settings store: one file per key below the television's settings/, and its faults. A setting is read as the
// television's other values are.
#include "orvex/platform/settings.h"

#include <cstdint>
#include <string>

#include "linux/settings_files.h"
#include "virtual/faults.h"
#include "virtual/service_values.h"

using orvex::virtual_tv::AccessResult;
using orvex::virtual_tv::Fault;
using orvex::virtual_tv::Faults;

int settings_get_int(const char* key, int* value) {
  if (const auto fault = Faults::Instance().Next(Fault::kSettingsGet)) {
    return *fault;
  }
  std::int64_t number = 0;
  switch (orvex::virtual_tv::ReadNumber(std::string("settings/") + (key == nullptr ? "" : key), &number)) {
    case AccessResult::kDone:
      *value = static_cast<int>(number);
      return kSettingsDone;
    case AccessResult::kMissing:
      return kSettingsNoKey;
    case AccessResult::kBadValue:
      return kSettingsNoInteger;
    case AccessResult::kInaccessible:
      break;
  }
  return kSettingsUnreadable;
}

int settings_subscribe(const char* key, SettingsChangedCallback callback, void* userData) {
  if (const auto fault = Faults::Instance().Next(Fault::kSettingsSubscribe)) {
    return *fault;
  }
  return orvex::port::SubscribeSetting(key, callback, userData);
}

int settings_unsubscribe(const char* key, SettingsChangedCallback callback) {
  if (const auto fault = Faults::Instance().Next(Fault::kSettingsUnsubscribe)) {
    return *fault;
  }
  return orvex::port::UnsubscribeSetting(key, callback);
}
