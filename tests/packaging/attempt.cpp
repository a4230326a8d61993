// Attempts what a confined program must not be able to do, and prints what succeeded. Exit code 0: nothing did.
#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
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

bool CanWrite(const char* folder) {
  return access(folder, W_OK) == 0;
}

// Mounts on a folder that does not exist, so that it does no harm where mounting is allowed: the error is ENOENT then.
bool CanMount() {
  return mount("none", "/orvex-nowhere", "tmpfs", 0, nullptr) == 0 || errno == ENOENT;
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
  Attempt("mount", CanMount());
  Attempt("be real-time", CanBeRealTime());
  Attempt("change a priority", setpriority(PRIO_PROCESS, 0, 1) == 0);
  Attempt("be root", setuid(0) == 0);
  Attempt("write to /usr", CanWrite("/usr"));
  Attempt("write to /etc", CanWrite("/etc"));
  Attempt("write to /var/lib", CanWrite("/var/lib"));
  Attempt("read the kernel's log", open("/dev/kmsg", O_RDONLY | O_CLOEXEC) >= 0);
  return succeeded ? 1 : 0;
}
