// A computer in a living room: a daemon and its session manager, two outputs, a microphone that hears both, and
// orvex-delay.
#pragma once

#include <memory>

#include "pipewire/client/delay_control.h"
#include "pipewire/client/filter_node.h"
#include "pipewire/client/link_keeper.h"
#include "pipewire/private_daemon.h"
#include "pipewire/room_sound.h"
#include "pipewire/test_client.h"

namespace orvex::integration {

class LivingRoom {
public:
  // Returns when everything is linked.
  explicit LivingRoom(const RoomWays& ways = {});
  ~LivingRoom();
  LivingRoom(const LivingRoom&) = delete;
  LivingRoom& operator=(const LivingRoom&) = delete;

  PrivateDaemon& GetDaemon() { return m_Daemon; }
  TestClient& GetClient() { return *m_Client; }

  // Returns when orvex-delay has taken it.
  void SetDelay(double delayMs);
  double GetDelay();

  // Return when it is gone.
  void RemoveReference();
  void RemoveDelayed();
  void RemoveMicrophone();
  void StopDelay();
  // What was removed is there again, and linked.
  void Repair();
  // The daemon ends, and with it all that it had.
  void StopDaemon();

private:
  void Enter();
  void Leave();
  void AddMicrophone();
  void RemoveOutput(const char* name);

  const RoomWays m_Ways;
  PrivateDaemon m_Daemon;
  std::unique_ptr<TestClient> m_Client;
  RoomSound m_Sound{m_Ways};
  std::unique_ptr<pipewire::DelayControl> m_Control;
  std::unique_ptr<pipewire::CreatedObject> m_Microphone;
  std::unique_ptr<pipewire::FilterNode> m_Room;
  std::unique_ptr<pipewire::LinkKeeper> m_Links;
  std::unique_ptr<Process> m_Delay;
};

}  // namespace orvex::integration
