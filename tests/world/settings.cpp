// The settings store in virtual time.
#include "orvex/platform/settings.h"

#include <algorithm>

#include "world/world.h"

using orvex::world::Lane;
using orvex::world::Quoted;
using orvex::world::Subscription;
using orvex::world::World;

struct SettingsNode {
  const char* name;
};

namespace {

std::vector<Subscription>::iterator Find(const std::string& key, SettingsChangedCallback callback) {
  auto& all = World::Current().subscriptions;
  return std::find_if(all.begin(), all.end(), [&](const Subscription& subscription) {
    return subscription.key == key && subscription.callback == callback;
  });
}

}  // namespace

int settings_get_int(const char* key, int* value) {
  World& world = World::Current();
  const auto setting = world.settings.find(key);
  const int usual = setting == world.settings.end() ? kSettingsNoKey : kSettingsDone;
  return world.Answer("settings_get_int", Quoted(key), usual, [&] { *value = setting->second; });
}

int settings_subscribe(const char* key, SettingsChangedCallback callback, void* userData) {
  World& world = World::Current();
  const bool isSubscribed = Find(key, callback) != world.subscriptions.end();
  return world.Answer("settings_subscribe", Quoted(key), isSubscribed ? kSettingsAlreadySubscribed : kSettingsDone,
                      [&] {
                        world.subscriptions.push_back({key, callback, userData});
                      });
}

// Whatever the answer, an existing subscription ends.
int settings_unsubscribe(const char* key, SettingsChangedCallback callback) {
  World& world = World::Current();
  const auto found = Find(key, callback);
  const bool isSubscribed = found != world.subscriptions.end();
  if (isSubscribed) {
    world.subscriptions.erase(found);
  }
  return world.Answer("settings_unsubscribe", Quoted(key), isSubscribed ? kSettingsDone : kSettingsNotSubscribed);
}

const char* settings_node_name(const SettingsNode* node) {
  return node->name;
}

void World::NotifySetting(const std::string& key, const char* name) {
  const std::string nodeName = name == nullptr ? "" : name;
  scheduler.At(scheduler.Now(), Lane::kMainLoop, [this, key, isNamed = name != nullptr, nodeName] {
    const SettingsNode node{isNamed ? nodeName.c_str() : nullptr};
    const std::vector<Subscription> current = subscriptions;
    for (const Subscription& subscription : current) {
      const bool isCancelled = Find(subscription.key, subscription.callback) == subscriptions.end();
      if (subscription.key == key && !isCancelled && !m_EndRequested) {
        subscription.callback(&node, subscription.userData);
      }
    }
  });
}
