// The subscriptions to settings keys, and their notifications. Main loop's thread only.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "linux/key_state.h"
#include "linux/tree_watch.h"
#include "orvex/platform/settings.h"

struct SettingsNode {
  std::string key;
};

namespace orvex::port {

class SettingsNotifier {
public:
  // Of the port's settings folder. A static object's destructor may unsubscribe.
  static SettingsNotifier& Instance();

  SettingsNotifier();

  // Between the main loop's start and stop: subscriptions made before are served from now on.
  void Start();
  void Stop();

  bool IsSubscribed(const std::string& key, SettingsChangedCallback callback) const;
  // False: the settings directory cannot be watched, now or, before the main loop's start, later.
  bool Subscribe(const std::string& key, SettingsChangedCallback callback, void* userData);
  // False: there is no such subscription.
  bool Unsubscribe(const std::string& key, SettingsChangedCallback callback);

private:
  struct Subscription {
    SettingsNode node;
    SettingsChangedCallback callback;
    void* userData;
    KeyState state;
    bool isCancelled = false;
  };
  using Subscriptions = std::vector<std::shared_ptr<Subscription>>;

  Subscriptions::const_iterator Find(const std::string& key, SettingsChangedCallback callback) const;
  bool CanWatch();
  // Notifies the subscriptions for which `isNews` says so.
  void NotifyWhere(const std::function<bool(KeyState&)>& isNews);

  const std::filesystem::path m_Root;
  Subscriptions m_Subscriptions;
  TreeWatch m_Watch;
};

}  // namespace orvex::port
