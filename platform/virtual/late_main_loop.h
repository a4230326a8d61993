// A main loop that is late, as on a busy television: the fault "main_loop.late_ms".
#pragma once

namespace orvex::virtual_tv {

// Holds the main loop back at each wake-up by what the television's faults say. Without the fault nothing changes. Main
// loop, after its start.
void MakeMainLoopLate();

}  // namespace orvex::virtual_tv
