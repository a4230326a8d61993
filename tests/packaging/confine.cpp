// orvex_confine CALLS PROGRAM [ARGUMENTS]: runs a program with system calls restricted as the unit restricts them. The
// file CALLS names the calls that stay allowed, one per line; every other one fails with EPERM.
#include <sched.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

void Require(int result, const std::string& deed) {
  if (result < 0) {
    std::fprintf(stderr, "orvex_confine: %s: error %d\n", deed.c_str(), -result);
    std::exit(2);
  }
}

void Refuse(scmp_filter_ctx filter, int call, int reason, const scmp_arg_cmp& condition) {
  Require(seccomp_rule_add(filter, SCMP_ACT_ERRNO(static_cast<unsigned>(reason)), call, 1, condition), "rule");
}

void Load(scmp_filter_ctx filter) {
  Require(seccomp_load(filter), "seccomp_load");
  seccomp_release(filter);
}

// RestrictAddressFamilies=AF_UNIX, MemoryDenyWriteExecute, RestrictNamespaces, RestrictRealtime.
void RefuseByArguments() {
  const scmp_filter_ctx filter = seccomp_init(SCMP_ACT_ALLOW);
  constexpr scmp_datum_t kWriteExecute = PROT_WRITE | PROT_EXEC;
  constexpr scmp_datum_t kNamespaces =
      CLONE_NEWNS | CLONE_NEWUTS | CLONE_NEWIPC | CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNET | CLONE_NEWCGROUP;
  Refuse(filter, SCMP_SYS(socket), EAFNOSUPPORT, SCMP_A0(SCMP_CMP_NE, AF_UNIX));
  Refuse(filter, SCMP_SYS(mmap), EPERM, SCMP_A2(SCMP_CMP_MASKED_EQ, kWriteExecute, kWriteExecute));
  Refuse(filter, SCMP_SYS(mprotect), EPERM, SCMP_A2(SCMP_CMP_MASKED_EQ, PROT_EXEC, PROT_EXEC));
  Refuse(filter, SCMP_SYS(sched_setscheduler), EPERM, SCMP_A1(SCMP_CMP_GT, 0));
  for (scmp_datum_t bit = 1; bit <= kNamespaces; bit <<= 1U) {
    if ((bit & kNamespaces) != 0) {
      Refuse(filter, SCMP_SYS(clone), EPERM, SCMP_A0(SCMP_CMP_MASKED_EQ, bit, bit));
      Refuse(filter, SCMP_SYS(unshare), EPERM, SCMP_A0(SCMP_CMP_MASKED_EQ, bit, bit));
    }
  }
  // A filter cannot see the flags of clone3(), which are in memory. After ENOSYS the C library uses clone().
  Require(seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0), "clone3");
  Load(filter);
}

void AllowOnly(const char* file) {
  const scmp_filter_ctx filter = seccomp_init(SCMP_ACT_ERRNO(EPERM));
  std::ifstream names(file);
  for (std::string name; std::getline(names, name);) {
    const int call = seccomp_syscall_resolve_name(name.c_str());
    if (call != __NR_SCMP_ERROR) {
      Require(seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0), name);
    }
  }
  Require(names.eof() ? 0 : -EIO, file);
  Load(filter);
}

}  // namespace

int main(int argc, char** argv) {
  Require(argc >= 3 ? 0 : -EINVAL, "arguments");
  RefuseByArguments();
  AllowOnly(argv[1]);
  execv(argv[2], argv + 2);
  std::perror(argv[2]);
  return 2;
}
