// The application framework: the main loop of ports on Linux, and no message ever comes.
#include "orvex/platform/application.h"

#include <cstdio>

#include "linux/port.h"
#include "linux/run_application.h"

int AppMain(int /*argc*/, char** /*argv*/, FwEflApplication* application) {
  return orvex::port::RunApplication(application);
}

void orvex::port::ReportProblem(const std::string& text) {
  std::fprintf(stderr, "orvex-minimal: %s\n", text.c_str());
}
