// Begins Ecore so that it neither loses a signal nor ends the process nor leaves files behind.
#pragma once

#include <string>

namespace orvex::port {

// As ecore_init(), on the main loop's thread, while the process has no other thread that looks at the environment. End
// signals that come meanwhile are kept when they were held before (end_signals.h). Empty: Ecore runs; ecore_shutdown()
// ends it. Otherwise what is missing, as a text for the user; nothing was begun.
std::string BeginEcore();

}  // namespace orvex::port
