// What a port tells the pieces that it is built from. The port defines each function of a piece that it takes; the
// linker names the ones that are missing.
#pragma once

#include <string>

namespace orvex::port {

// Every piece. Tells the user of a problem that he can mend: a bad file, a missing directory. `text` is one line
// without its line break. Any thread, before main() too.
void ReportProblem(const std::string& text);

}  // namespace orvex::port
