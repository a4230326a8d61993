// orvex-delay as a service of the person's systemd.
#pragma once

namespace orvex::tools {

// From now on, and after each login; with the choices as they are now. Throws CommandError.
void StartUserService();
// Not any more. No systemd, or no such service, is as good.
void StopUserService();

}  // namespace orvex::tools
