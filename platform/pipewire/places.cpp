// Folders below the XDG base directories.
#include "pipewire/places.h"

#include <cstdlib>
#include <system_error>

#include "linux/no_destroy.h"
#include "linux/port.h"
#include "pipewire/client/pc_config.h"

namespace orvex::pipewire {
namespace {

namespace fs = std::filesystem;

// No file can be below it.
constexpr char kNowhere[] = "/dev/null";

fs::path Made(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) {
    port::ReportProblem("cannot make the directory " + folder.string() + ": " + error.message());
  }
  return folder;
}

fs::path FindState() {
  try {
    return StateFolder();
  } catch (const PcConfigError& problem) {
    port::ReportProblem(problem.what());
    return kNowhere;
  }
}

fs::path FindRun() {
  const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
  return runtime != nullptr && runtime[0] == '/' ? fs::path(runtime) / "orvex" : StatePlace() / "run";
}

}  // namespace

const fs::path& StatePlace() {
  static const port::NoDestroy<const fs::path> place(FindState());
  return *place;
}

const fs::path& SettingsPlace() {
  static const port::NoDestroy<const fs::path> place(Made(StatePlace() / "settings"));
  return *place;
}

const fs::path& RunPlace() {
  static const port::NoDestroy<const fs::path> place(Made(FindRun()));
  return *place;
}

}  // namespace orvex::pipewire
