// Orvex: measures how late or early the optical audio output plays, and corrects its delay. One process, one run.
#include "Application/OrvexApp.h"
#include "orvex/platform/application.h"

namespace {

COrvexApp* const kApplication = COrvexApp::CreateAtProgramStart();

}  // namespace

int main(int argc, char** argv) {
  return kApplication == nullptr ? 0 : AppMain(argc, argv, kApplication);
}
