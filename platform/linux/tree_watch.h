// Watches a directory and all directories below it, those that appear later too.
#pragma once

#include <Ecore.h>
#include <Ecore_File.h>

#include <filesystem>
#include <functional>
#include <vector>

namespace orvex::port {

// Main loop only.
class TreeWatch {
public:
  struct Listener {
    std::function<void(const std::filesystem::path&)> onCreated;  // a file was created or renamed to this name
    std::function<void(const std::filesystem::path&)> onClosed;   // a writer has closed this file
    std::function<void()> onAny;                                  // the directories have changed: any file may be new
  };

  explicit TreeWatch(Listener listener) : m_Listener(std::move(listener)) {}
  ~TreeWatch() { Disarm(); }
  TreeWatch(const TreeWatch&) = delete;
  TreeWatch& operator=(const TreeWatch&) = delete;

  // Begins, in a started main loop; onAny() follows once from the main loop. False: `root` cannot be watched.
  bool Arm(const std::filesystem::path& root);
  // Ends; to be called before the main loop stops.
  void Disarm();
  bool IsArmed() const { return !m_Monitors.empty(); }

private:
  static void OnFileEvent(void* watch, Ecore_File_Monitor* monitor, Ecore_File_Event event, const char* path);
  static void OnRebuild(void* watch);
  void AddMonitor(const std::filesystem::path& directory);
  void AddMonitors();
  void RemoveMonitors();
  void ScheduleRebuild();

  const Listener m_Listener;
  std::filesystem::path m_Root;
  std::vector<Ecore_File_Monitor*> m_Monitors;
  Ecore_Job* m_Rebuild = nullptr;
};

}  // namespace orvex::port
