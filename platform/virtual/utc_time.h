// The wall clock as text, for lines that people read.
#pragma once

#include <string>

namespace orvex::virtual_tv {

// "2031-05-04T09:08:07.123456Z". Any thread.
std::string UtcNow();

}  // namespace orvex::virtual_tv
