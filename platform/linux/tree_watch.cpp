// One Ecore file monitor per directory; all are made anew when the directories have changed.
#include "linux/tree_watch.h"

#include <algorithm>
#include <system_error>

namespace orvex::port {
namespace {

namespace fs = std::filesystem;

// Nobody keeps that many; it bounds what a link to a large tree could cost.
constexpr std::size_t kMaximumDirectories = 256;

bool ChangesDirectories(Ecore_File_Event event) {
  return event == ECORE_FILE_EVENT_CREATED_DIRECTORY || event == ECORE_FILE_EVENT_DELETED_DIRECTORY ||
         event == ECORE_FILE_EVENT_DELETED_SELF;
}

}  // namespace

bool TreeWatch::Arm(const fs::path& root) {
  m_Root = root;
  AddMonitors();
  if (!IsArmed()) {
    return false;
  }
  // First watch, then look: a write in between is seen twice rather than never.
  ScheduleRebuild();
  return true;
}

void TreeWatch::Disarm() {
  RemoveMonitors();
  if (m_Rebuild != nullptr) {
    ecore_job_del(m_Rebuild);
    m_Rebuild = nullptr;
  }
}

void TreeWatch::AddMonitor(const fs::path& directory) {
  Ecore_File_Monitor* const monitor = ecore_file_monitor_add(directory.c_str(), &OnFileEvent, this);
  if (monitor != nullptr) {
    m_Monitors.push_back(monitor);
  }
}

void TreeWatch::AddMonitors() {
  std::error_code error;
  if (!fs::is_directory(m_Root, error)) {
    return;
  }
  AddMonitor(m_Root);
  fs::recursive_directory_iterator entry(m_Root, fs::directory_options::skip_permission_denied, error);
  while (!error && entry != fs::recursive_directory_iterator() && m_Monitors.size() < kMaximumDirectories) {
    if (entry->is_directory(error)) {
      AddMonitor(entry->path());
    }
    entry.increment(error);
  }
}

void TreeWatch::RemoveMonitors() {
  std::for_each(m_Monitors.begin(), m_Monitors.end(), ecore_file_monitor_del);
  m_Monitors.clear();
}

void TreeWatch::OnFileEvent(void* watch, Ecore_File_Monitor* /*monitor*/, Ecore_File_Event event, const char* path) {
  auto& self = *static_cast<TreeWatch*>(watch);
  if (ChangesDirectories(event)) {
    self.ScheduleRebuild();
  } else if (event == ECORE_FILE_EVENT_CLOSED) {
    self.m_Listener.onClosed(path);
  } else if (event == ECORE_FILE_EVENT_CREATED_FILE) {
    self.m_Listener.onCreated(path);
  }
}

// Not at once: a monitor must not go while Ecore is calling it.
void TreeWatch::ScheduleRebuild() {
  if (m_Rebuild == nullptr) {
    m_Rebuild = ecore_job_add(&OnRebuild, this);
  }
}

void TreeWatch::OnRebuild(void* watch) {
  auto& self = *static_cast<TreeWatch*>(watch);
  self.m_Rebuild = nullptr;
  self.RemoveMonitors();
  self.AddMonitors();
  self.m_Listener.onAny();
}

}  // namespace orvex::port
