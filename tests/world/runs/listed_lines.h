// Every line that the service may log and every call that it may make, with the threads on which it may.
#pragma once

#include <string>

#include "world/journal.h"

namespace orvex::runs {

// Is there a line like this, and is it made on one of its threads? Lines "* …" of the tests themselves pass. Otherwise
// a text that says what is wrong; empty when nothing is.
std::string Objection(const world::Entry& entry);

}  // namespace orvex::runs
