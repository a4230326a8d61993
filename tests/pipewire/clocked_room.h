// A computer in a living room whose outputs and microphone have clocks of their own, so that PipeWire's adaptive
// resamplers are at work. The room is in the daemon: no process of the test is part of the sound's way.
#pragma once

#include <memory>
#include <vector>

#include "pipewire/client/created_object.h"
#include "pipewire/client/filter_node.h"
#include "pipewire/client/link_keeper.h"
#include "pipewire/private_daemon.h"
#include "pipewire/room_cards.h"
#include "pipewire/test_client.h"

namespace orvex::integration {

struct ClockedRoomDesign {
  CardDesign reference;
  CardDesign delayed;
  CardDesign microphone;
  bool isProgrammePlaying = true;  // for a while; else the outputs rest until something is to be measured
};

class ClockedRoom {
public:
  // Returns when everything is linked.
  explicit ClockedRoom(const ClockedRoomDesign& design);
  ~ClockedRoom();
  ClockedRoom(const ClockedRoom&) = delete;
  ClockedRoom& operator=(const ClockedRoom&) = delete;

  PrivateDaemon& GetDaemon() { return m_Daemon; }
  const RoomCards& GetCards() const { return *m_Cards; }

  // Plays so many impulses, one after the other, as a program does: how much later each comes to the microphone from
  // the delayed output than from the reference output, by what the cards play. An impulse that is lost is played
  // again. Fewer: not all arrived within kPatience.
  std::vector<double> MeasureDifferencesMs(std::size_t impulses);

private:
  class Striker;

  void MakeStriker();
  std::unique_ptr<pipewire::CreatedObject> MakeCard(const char* name, const char* card, bool isMicrophone,
                                                    int priority);

  PrivateDaemon m_Daemon;
  SharedRoomCards m_Cards;
  std::unique_ptr<TestClient> m_Client;
  std::vector<std::unique_ptr<pipewire::CreatedObject>> m_Nodes;
  std::unique_ptr<Process> m_Delay;
  std::unique_ptr<Striker> m_Striker;
  std::unique_ptr<pipewire::FilterNode> m_StrikerNode;
  std::unique_ptr<pipewire::LinkKeeper> m_Links;
};

}  // namespace orvex::integration
