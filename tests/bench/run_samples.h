// What single runs cost and how long they take, measured on virtual televisions of their own.
#pragma once

#include <cstdint>
#include <optional>

namespace orvex::bench {

struct ProcessCost {
  double firstEventMs = 0.0;  // from before the process is made to the handler of its first event
  double processorMs = 0.0;   // user and system, the whole process
  double memoryKib = 0.0;     // most resident memory
};

struct CostPair {
  ProcessCost service;
  ProcessCost bare;  // Ecore and libasound with the same sound on the same device, and nothing else
};

// Measures a run of each, and one more of the service for its memory, one after the other. Throws std::runtime_error
// when one of them fails.
CostPair MeasureCosts();

struct RunTimes {
  double deliveryToDelayMs = 0.0;  // from the delivery of the block that completes the pair to the written delay
  double resultMs = 0.0;           // from the start of the recording to the written delay
  double demandedMs = 0.0;         // the part of that which room, sound and buffers make unavoidable
};

// Measures a run in a quiet room with a true difference of 30 to 280 ms of either sign, drawn with `seed`. Empty if
// the run found no difference.
std::optional<RunTimes> MeasureRun(std::uint64_t seed);

}  // namespace orvex::bench
