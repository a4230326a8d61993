// The only file that is compiled again for another commit.
#include "options/version.h"

#include "options/commit.h"

namespace orvex::tools {

std::string Version() {
  const std::string commit = ORVEX_COMMIT;
  return ORVEX_VERSION + (commit.empty() ? "" : " (" + commit + ")");
}

}  // namespace orvex::tools
