// Looks for what Ecore needs, and calls ecore_init().
#include "linux/ecore_start.h"

#include <Ecore.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "linux/end_signals.h"

namespace orvex::port {
namespace {

// What a run opens. Measured: 37 descriptors at a time with a full message socket, the standard ones among them, and
// files that are open for a moment. Ecore does not survive it when its first ones are refused.
constexpr std::size_t kNeededDescriptors = 48;

bool HasDescriptors(std::size_t count) {
  std::vector<int> opened;
  while (opened.size() < count) {
    const int fd = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
      break;
    }
    opened.push_back(fd);
  }
  for (const int fd : opened) {
    ::close(fd);
  }
  return opened.size() == count;
}

// Without a runtime folder EFL makes one in the home folder, which a run has no use for, and ends the process where it
// cannot. It looks at the name only while it begins.
class RuntimeFolderName {
public:
  RuntimeFolderName() : m_IsMissing(std::getenv(kName) == nullptr) {
    if (m_IsMissing) {
      ::setenv(kName, "/dev/null", 1);
    }
  }
  ~RuntimeFolderName() {
    if (m_IsMissing) {
      ::unsetenv(kName);
    }
  }
  RuntimeFolderName(const RuntimeFolderName&) = delete;
  RuntimeFolderName& operator=(const RuntimeFolderName&) = delete;

private:
  static constexpr const char* kName = "XDG_RUNTIME_DIR";
  const bool m_IsMissing;
};

}  // namespace

std::string BeginEcore() {
  if (!HasDescriptors(kNeededDescriptors)) {
    return "the system gives this process too few file descriptors: expected " + std::to_string(kNeededDescriptors) +
           " more than are open; see ulimit -n";
  }
  // Otherwise Ecore looks for D-Bus services, and complains at length where there are none.
  ecore_app_no_system_modules();
  const RuntimeFolderName name;
  const EndSignalKeeper keeper;
  return ecore_init() > 0 ? "" : "Ecore cannot begin";
}

}  // namespace orvex::port
