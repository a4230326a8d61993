// A PipeWire daemon and a session manager of a test's own, in a folder that is gone with them. What the person who runs
// the test hears is not touched.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "integration/process.h"

namespace orvex::integration {

class PrivateDaemon {
public:
  // Starts the daemon; returns when it takes connections. Connections of this process lead to it as well.
  PrivateDaemon();
  ~PrivateDaemon();
  PrivateDaemon(const PrivateDaemon&) = delete;
  PrivateDaemon& operator=(const PrivateDaemon&) = delete;

  void Stop();
  // Sends it to the daemon.
  void Signal(int number) const;
  // The session manager is WirePlumber with its policy: it gives sinks their ports and links the streams of programs,
  // as in a person's session.
  void Start();

  // The folder "orvex" of the person whom the daemon serves, with his choices, and that with the state.
  std::filesystem::path GetConfigFolder() const { return m_Folder / "config" / "orvex"; }
  std::filesystem::path GetStateFolder() const { return m_Folder / "state" / "orvex"; }

  // Where a room keeps its cards, see room_cards.h.
  std::filesystem::path GetRoomFile() const { return m_Folder / "cards"; }

  // Starts a program that uses this daemon. Its output is in LogOf(name), without that of an earlier one.
  // `environment`: what else it gets.
  std::unique_ptr<Process> Run(const std::string& name, const std::filesystem::path& program,
                               const std::vector<std::string>& arguments = {},
                               const std::map<std::string, std::string>& environment = {}) const;
  std::string LogOf(const std::string& name) const;
  // False: `text` is not there within kPatience.
  bool WaitForLog(const std::string& name, const std::string& text) const;

private:
  std::filesystem::path m_Folder;
  std::map<std::string, std::string> m_Environment;
  std::unique_ptr<Process> m_Daemon;
  std::unique_ptr<Process> m_SessionManager;
};

}  // namespace orvex::integration
