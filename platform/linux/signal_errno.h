// Ecore's signal handlers set errno to 0 in whatever they interrupt, so that a failed call looks like one without a
// reason. After this, errno is what it was.
#pragma once

namespace orvex::port {

// Call after Ecore has set its handlers, on the main loop's thread.
void KeepErrnoInEcoreHandlers();

}  // namespace orvex::port
