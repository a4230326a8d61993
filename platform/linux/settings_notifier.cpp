// Turns what happens to files into notifications of keys.
#include "linux/settings_notifier.h"

#include <Ecore_File.h>

#include <algorithm>
#include <system_error>

#include "linux/main_loop.h"
#include "linux/no_destroy.h"
#include "linux/port.h"

namespace orvex::port {

namespace fs = std::filesystem;

SettingsNotifier& SettingsNotifier::Instance() {
  static const NoDestroy<SettingsNotifier> notifier;
  return *notifier;
}

SettingsNotifier::SettingsNotifier()
    : m_Root(SettingsFolder()),
      m_Watch({[this](const fs::path& file) {
                 NotifyWhere([&](KeyState& state) { return state.GetFile() == file && state.TakeChange(); });
               },
               [this](const fs::path& file) {
                 NotifyWhere([&](KeyState& state) { return state.GetFile() == file && state.TakeClosing(); });
               },
               [this] { NotifyWhere([](KeyState& state) { return state.TakeChange(); }); }}) {}

void SettingsNotifier::Start() {
  ecore_file_init();
  if (!CanWatch() && !m_Subscriptions.empty()) {
    ReportProblem("cannot watch " + m_Root.string() + ": changes of settings go unseen");
  }
}

void SettingsNotifier::Stop() {
  m_Watch.Disarm();
  ecore_file_shutdown();
}

SettingsNotifier::Subscriptions::const_iterator SettingsNotifier::Find(const std::string& key,
                                                                       SettingsChangedCallback callback) const {
  return std::find_if(m_Subscriptions.begin(), m_Subscriptions.end(),
                      [&](const std::shared_ptr<Subscription>& subscription) {
                        return subscription->node.key == key && subscription->callback == callback;
                      });
}

bool SettingsNotifier::IsSubscribed(const std::string& key, SettingsChangedCallback callback) const {
  return Find(key, callback) != m_Subscriptions.end();
}

bool SettingsNotifier::CanWatch() {
  if (CurrentMainLoop() != 0) {
    return m_Watch.IsArmed() || m_Watch.Arm(m_Root);
  }
  std::error_code error;
  return fs::is_directory(m_Root, error);
}

bool SettingsNotifier::Subscribe(const std::string& key, SettingsChangedCallback callback, void* userData) {
  if (!CanWatch()) {
    ReportProblem("cannot watch " + m_Root.string() + " for " + key);
    return false;
  }
  m_Subscriptions.push_back(
      std::make_shared<Subscription>(Subscription{{key}, callback, userData, KeyState(m_Root / key)}));
  return true;
}

bool SettingsNotifier::Unsubscribe(const std::string& key, SettingsChangedCallback callback) {
  const auto found = Find(key, callback);
  if (found == m_Subscriptions.end()) {
    return false;
  }
  (*found)->isCancelled = true;
  m_Subscriptions.erase(found);
  return true;
}

void SettingsNotifier::NotifyWhere(const std::function<bool(KeyState&)>& isNews) {
  // A copy: callbacks subscribe and unsubscribe.
  const Subscriptions subscriptions = m_Subscriptions;
  for (const auto& subscription : subscriptions) {
    if (!IsMainLoopEnding() && !subscription->isCancelled && isNews(subscription->state)) {
      subscription->callback(&subscription->node, subscription->userData);
    }
  }
}

}  // namespace orvex::port

const char* settings_node_name(const SettingsNode* node) {
  return node == nullptr ? nullptr : node->key.c_str();
}
