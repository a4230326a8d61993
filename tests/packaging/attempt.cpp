// Attempts what a confined program must not do, and prints what it could do. Exit code 0: nothing.
#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>

namespace {

bool succeeded = false;

void Attempt(const char* deed, bool success) {
  if (success) {
    std::printf("could %s\n", deed);
    succeeded = true;
  }
}

bool CanMap(int protection) {
  return mmap(nullptr, 4096, protection, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) != MAP_FAILED;
}

bool CanMakeExecutable() {
  void* const page = mmap(nullptr, 4096, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return page != MAP_FAILED && mprotect(page, 4096, PROT_READ | PROT_EXEC) == 0;
}

bool CanWrite(const char* file) {
  return open(file, O_WRONLY | O_CREAT | O_CLOEXEC, 0600) >= 0;
}

bool CanBeRealTime() {
  const sched_param parameters{1};
  return sched_setscheduler(0, SCHED_FIFO, &parameters) == 0;
}

}  // namespace

int main() {
  Attempt("use the network", socket(AF_INET, SOCK_DGRAM, 0) >= 0);
  Attempt("map writable code", CanMap(PROT_READ | PROT_WRITE | PROT_EXEC));
  Attempt("make code of data", CanMakeExecutable());
  Attempt("make a namespace", unshare(CLONE_NEWUTS) == 0);
  Attempt("mount", mount("none", "/tmp", "tmpfs", 0, nullptr) == 0);
  Attempt("be real-time", CanBeRealTime());
  Attempt("change a priority", setpriority(PRIO_PROCESS, 0, 1) == 0);
  Attempt("be root", setuid(0) == 0);
  Attempt("write to /usr", CanWrite("/usr/orvex-attempt"));
  Attempt("write to /etc", CanWrite("/etc/orvex-attempt"));
  Attempt("write to /var/lib", CanWrite("/var/lib/orvex-attempt"));
  Attempt("read the kernel's log", open("/dev/kmsg", O_RDONLY | O_CLOEXEC) >= 0);
  return succeeded ? 1 : 0;
}
