// The only file of the tools that is compiled again for another commit.
#include "options/version.h"

#include <orvex_version.h>

namespace orvex::tools {

std::string Version() {
  return ORVEX_VERSION;
}

}  // namespace orvex::tools
