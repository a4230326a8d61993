// A connection of the test itself: waits until the daemon has what a test expects, and makes sinks.
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <string>

#include "integration/process.h"
#include "pipewire/client/connection.h"
#include "pipewire/client/created_object.h"
#include "pipewire/client/loops.h"

namespace orvex::integration {

// To be made when the daemon runs, and destroyed before it is stopped.
class TestClient : private pipewire::RegistryListener {
public:
  TestClient();
  ~TestClient() override;
  TestClient(const TestClient&) = delete;
  TestClient& operator=(const TestClient&) = delete;

  pipewire::ThreadLoop& GetLoop() { return m_Loop; }
  pipewire::Connection& GetConnection() { return *m_Connection; }

  // Asks `isReached`, with the loop locked, whenever an object has come or gone. False: not within kPatience.
  bool WaitUntil(const std::function<bool()>& isReached);
  bool WaitForNode(const std::string& name);
  bool WaitForNoNode(const std::string& name);
  // It processes sound, or rests.
  bool WaitForRunning(const std::string& name, bool isRunning);
  // "node:port node:port" of each link that there is, sorted.
  std::vector<std::string> GetLinks() const;
  bool WaitForLinks(std::size_t count);
  // Everything that was asked so far has been done.
  bool Sync();

  // An output of the computer is switched on and off.
  void AddOutput(const std::string& name);
  void RemoveOutput(const std::string& name);
  // Where the session manager has a program play that has no output of its own.
  void SetDefaultOutput(const std::string& name);

private:
  void OnAdded(const pipewire::Object& object) override;
  void OnRemoved(const pipewire::Object& object) override;

  pipewire::ThreadLoop m_Loop{"test"};
  std::unique_ptr<pipewire::Connection> m_Connection;
  std::map<std::string, std::unique_ptr<pipewire::CreatedObject>> m_Outputs;
};

}  // namespace orvex::integration
