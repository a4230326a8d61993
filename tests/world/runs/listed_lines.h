// What may stand in a journal: the log lines of src/ and the calls that the service may make, each on its threads.
#pragma once

#include <string>

#include "world/journal.h"

namespace orvex::runs {

// Empty when src/ has a log call for this line, or the service makes this call, and the thread is one on which it may;
// otherwise a text that says what is wrong. Lines "* …" of the tests themselves pass.
std::string Objection(const world::Entry& entry);

}  // namespace orvex::runs
