// Reads a key's file, and keeps subscriptions from those who subscribe twice or in vain.
#include "linux/settings_files.h"

#include <cerrno>
#include <limits>
#include <string>
#include <system_error>

#include "linux/known_problems.h"
#include "linux/no_destroy.h"
#include "linux/number_text.h"
#include "linux/port.h"
#include "linux/printable_text.h"
#include "linux/settings_notifier.h"
#include "linux/small_files.h"

namespace orvex::port {
namespace {

constexpr std::size_t kMaximumValueBytes = 4096;
constexpr std::int64_t kMinimum = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t kMaximum = std::numeric_limits<std::int32_t>::max();

KnownProblems& Problems() {
  static const NoDestroy<KnownProblems> problems;
  return *problems;
}

std::string KeyOf(const char* key) {
  return key == nullptr ? "" : key;
}

int ReadInteger(const std::string& file, int* value) {
  const std::string text = ReadSmallFile(file, kMaximumValueBytes);
  const auto number = text.size() <= kMaximumValueBytes ? ParseNumber(text, kMinimum, kMaximum) : std::nullopt;
  if (!number) {
    constexpr std::size_t kShownBytes = 60;
    Problems().Report(file, file + ": \"" + Printable(TrimBlanks(text).substr(0, kShownBytes)) +
                                "\": expected an integer from " + std::to_string(kMinimum) + " to " +
                                std::to_string(kMaximum));
    return kSettingsNoInteger;
  }
  Problems().Forget(file);
  *value = static_cast<int>(*number);
  return kSettingsDone;
}

}  // namespace

int GetSetting(const char* key, int* value) {
  if (!IsPlainPath(KeyOf(key))) {
    return kSettingsNoKey;
  }
  const std::string file = SettingsFolder() / key;
  try {
    return ReadInteger(file, value);
  } catch (const std::system_error& problem) {
    const int reason = problem.code().value();
    if (reason == ENOENT || reason == ENOTDIR) {
      return kSettingsNoKey;
    }
    Problems().Report(file, "cannot read " + file + ": " + problem.code().message());
    return kSettingsUnreadable;
  }
}

int SubscribeSetting(const char* key, SettingsChangedCallback callback, void* userData) {
  if (callback == nullptr || !IsPlainPath(KeyOf(key))) {
    ReportProblem("\"" + SettingsFolder().filename().string() + "/" + KeyOf(key) +
                  "\": expected a callback and a key without empty or hidden parts");
    return kSettingsUnreadable;
  }
  if (SettingsNotifier::Instance().IsSubscribed(key, callback)) {
    return kSettingsAlreadySubscribed;
  }
  return SettingsNotifier::Instance().Subscribe(key, callback, userData) ? kSettingsDone : kSettingsUnreadable;
}

int UnsubscribeSetting(const char* key, SettingsChangedCallback callback) {
  const bool isDone = key != nullptr && SettingsNotifier::Instance().Unsubscribe(key, callback);
  return isDone ? kSettingsDone : kSettingsNotSubscribed;
}

void StartSettingNotifications() {
  SettingsNotifier::Instance().Start();
}

void StopSettingNotifications() {
  SettingsNotifier::Instance().Stop();
}

}  // namespace orvex::port
