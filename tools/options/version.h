// Which source a program was built from.
#pragma once

#include <string>

namespace orvex::tools {

// "0.1.0 (3f2a91c)": the project's version and the commit; "-dirty" follows the commit when files were changed since.
// The version alone when the source lay in no repository of its own.
std::string Version();

}  // namespace orvex::tools
