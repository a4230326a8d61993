// Which part of a recording a group of charts shows.
#pragma once

#include <string>

#include "replay/chart.h"
#include "replay/run_record.h"

namespace orvex::tools {

struct View {
  std::string name;   // begins the charts' names
  std::string title;  // what the part is
  Span buffers;       // goes on beyond the recording's end, so that what lies there is not cut
};

View WholeRecording(const RunRecord& run);

// The part around the pair, or else around what ended the run or came closest to a pair; of an even shorter recording,
// all of it.
View CloseUp(const RunRecord& run);

}  // namespace orvex::tools
