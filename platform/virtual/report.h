// How this port tells about problems that a user can mend: one line on stderr and in the television's service.log.
#pragma once

#include "linux/port.h"

namespace orvex::virtual_tv {

using port::ReportProblem;

}  // namespace orvex::virtual_tv
