// A file that the service opens gets a new time of change, which nobody can set.
#include "run/debug_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <tuple>

namespace orvex::tools {
namespace {

bool IsWrittenSince(const std::string& file, const timespec& begin) {
  struct stat state {};
  return ::lstat(file.c_str(), &state) == 0 && S_ISREG(state.st_mode) && state.st_uid == ::geteuid() &&
         std::tie(state.st_ctim.tv_sec, state.st_ctim.tv_nsec) >= std::tie(begin.tv_sec, begin.tv_nsec);
}

}  // namespace

timespec FileTimeNow() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
  return now;
}

void ForgetForeignFiles(RunReport& report, const timespec& begin) {
  for (std::string& file : report.debugFiles) {
    if (!IsWrittenSince(file, begin)) {
      report.dumpFile = report.dumpFile == file ? "" : report.dumpFile;
      report.resultFile = report.resultFile == file ? "" : report.resultFile;
      file.clear();
    }
  }
}

void RemoveDebugFiles(RunReport& report) {
  for (const std::string& file : report.debugFiles) {
    ::unlink(file.c_str());
  }
  report.debugFiles.clear();
  report.dumpFile.clear();
  report.resultFile.clear();
}

}  // namespace orvex::tools
