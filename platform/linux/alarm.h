// The end of all alarms.
#pragma once

namespace orvex::port {

// Ends every alarm that is active. Main loop only, before Ecore ends: its timers do not outlive it.
void EndAllAlarms();

}  // namespace orvex::port
