// The wall clock as text, for lines that people read.
#pragma once

#include <string>

namespace orvex::port {

// "2031-05-04T09:08:07.123456Z". Any thread.
std::string UtcNow();

}  // namespace orvex::port
