// A main loop that is late, as on a busy television: the fault "main_loop.late_ms".
#pragma once

namespace orvex::virtual_tv {

// Delays each wake-up of the main loop by the time that the television's faults give. Without the fault nothing
// changes. Main loop, after its start.
void MakeMainLoopLate();

}  // namespace orvex::virtual_tv
