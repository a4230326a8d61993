// The application framework: the main loop of ports on Linux, and no message ever comes.
#include "orvex/platform/application.h"

#include "linux/run_application.h"

int AppMain(int /*argc*/, char** /*argv*/, FwEflApplication* application) {
  return orvex::port::RunApplication(application);
}
