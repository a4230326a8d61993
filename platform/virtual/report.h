// How the port itself tells about problems that a user can mend: a bad file, a missing directory.
#pragma once

#include <string>

namespace orvex::virtual_tv {

// One line to stderr and to the television's service.log. Any thread, before main() too.
void ReportProblem(const std::string& text);

}  // namespace orvex::virtual_tv
