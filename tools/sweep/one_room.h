// One room of a plan: run by the receiver, or recorded and read.
#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "fine/fine_reading.h"
#include "sweep/disturbance.h"
#include "sweep/plan.h"
#include "sweep/statistics.h"
#include "testsound/sound_design.h"

namespace orvex::tools {

// `recordings`: for the disturbance of that name. Throws std::invalid_argument, sim::RoomError.
RoomResult RunRoom(const Plan& plan, std::size_t row, std::size_t room, const std::vector<Sound>& recordings = {});

// Keeps the reader of one sound, the one that was asked for last: rooms come row by row, and a row has one sound unless
// its rooms draw it. Threads may share one object.
class FineReaders {
public:
  // Takes 0.1 s for another sound than the last time.
  std::shared_ptr<const fine::FineReader> For(const SoundDesign& design);

private:
  std::mutex m_Mutex;
  std::optional<SoundDesign> m_Design;
  std::shared_ptr<const fine::FineReader> m_Reader;
};

// Records the room until the sound has been heard, or until its cut, and reads the recording. Throws as RunRoom() does.
RoomResult ReadRoom(const Plan& plan, std::size_t row, std::size_t room, FineReaders& readers,
                    const std::vector<Sound>& recordings = {});

}  // namespace orvex::tools
