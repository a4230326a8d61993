// A remote control that hears what a test says, block by block, and delivers it at the times of a real one.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "world/world.h"

namespace orvex::runs {

// What one block holds.
enum class Heard {
  kAmbient,
  k17kHz,
  k19kHz,
  kWeak19kHz,   // clean, but below a tone that was heard before
  kNoisy19kHz,  // beside it something nearly as loud
  kLost,        // the port says so with a null record
};

// Block n, from 1, is due n blocks after the accepted start command plus the latency of the voice channel. It sends
// while it is told to, up to its last block.
class ScriptedRemote {
public:
  static constexpr double kLatencyMs = 30.0;

  explicit ScriptedRemote(world::World& world);
  ~ScriptedRemote();
  ScriptedRemote(const ScriptedRemote&) = delete;
  ScriptedRemote& operator=(const ScriptedRemote&) = delete;

  void Hear(int block, Heard heard) { m_Script[block] = heard; }
  // 17 kHz in buffer 50 and 19 kHz in buffer 53: a difference of 49 ms.
  void HearThreeBuffersLate();
  // Falls silent after this block.
  void EndAfter(int block) { m_LastBlock = block; }
  // Every block from this one on comes so much later.
  void DelayFrom(int block, double milliseconds);
  // When block `block` of a recording started at `startMs` is delivered.
  double DeliveredAtMs(int block, double startMs = 0.0) const;

private:
  void Deliver(world::Time start, int block);
  void Schedule(world::Time start, int block);

  world::World& m_World;
  std::map<int, Heard> m_Script;
  int m_LastBlock = 10000;
  int m_DelayedFrom = 0;
  double m_DelayMs = 0.0;
  int m_Recording = 0;
};

}  // namespace orvex::runs
