// The settings store: one file per key below the television's settings/.
#include "orvex/platform/settings.h"

#include <cstdint>
#include <string>

#include "virtual/faults.h"
#include "virtual/report.h"
#include "virtual/service_values.h"
#include "virtual/settings_notifier.h"
#include "virtual/television_values.h"

namespace {

using orvex::virtual_tv::AccessResult;
using orvex::virtual_tv::Fault;
using orvex::virtual_tv::Faults;
using orvex::virtual_tv::SettingsNotifier;

constexpr int kNoSuchKey = -1;
constexpr int kBadValue = -2;
constexpr int kAlreadySubscribed = -1;
constexpr int kNoSubscription = -1;
constexpr int kNoStore = -3;

std::string NameOf(const char* key) {
  return std::string("settings/") + (key == nullptr ? "" : key);
}

}  // namespace

int settings_get_int(const char* key, int* value) {
  if (const auto fault = Faults::Instance().Next(Fault::kSettingsGet)) {
    return *fault;
  }
  std::int64_t number = 0;
  switch (orvex::virtual_tv::ReadNumber(NameOf(key), &number)) {
    case AccessResult::kDone:
      *value = static_cast<int>(number);
      return 0;
    case AccessResult::kMissing:
      return kNoSuchKey;
    case AccessResult::kBadValue:
      return kBadValue;
    case AccessResult::kInaccessible:
      break;
  }
  return kNoStore;
}

int settings_subscribe(const char* key, SettingsChangedCallback callback, void* userData) {
  if (const auto fault = Faults::Instance().Next(Fault::kSettingsSubscribe)) {
    return *fault;
  }
  if (callback == nullptr || !orvex::virtual_tv::DescribeTelevisionValue(NameOf(key))) {
    orvex::virtual_tv::ReportProblem("\"" + NameOf(key) +
                                     "\": expected a callback and a key without empty or hidden parts");
    return kNoStore;
  }
  if (SettingsNotifier::Instance().IsSubscribed(key, callback)) {
    return kAlreadySubscribed;
  }
  return SettingsNotifier::Instance().Subscribe(key, callback, userData) ? 0 : kNoStore;
}

int settings_unsubscribe(const char* key, SettingsChangedCallback callback) {
  if (const auto fault = Faults::Instance().Next(Fault::kSettingsUnsubscribe)) {
    return *fault;
  }
  const bool isDone = key != nullptr && SettingsNotifier::Instance().Unsubscribe(key, callback);
  return isDone ? 0 : kNoSubscription;
}

const char* settings_node_name(const SettingsNode* node) {
  return node == nullptr ? nullptr : node->key.c_str();
}
