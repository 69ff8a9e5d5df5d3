#include <sched.h>
#include <seccomp.h>
#include <sys/ioctl.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <initializer_list>

#include "host/workers/linux/SystemCallRules.h"

namespace kbx {
namespace {

/// What a library may try and can do without.
constexpr auto kRefused = {
    // connections, in either direction
    SCMP_SYS(socket), SCMP_SYS(connect), SCMP_SYS(bind), SCMP_SYS(listen), SCMP_SYS(accept),
    SCMP_SYS(accept4), SCMP_SYS(socketpair),
    // other programs and processes
    SCMP_SYS(execve), SCMP_SYS(execveat), SCMP_SYS(fork), SCMP_SYS(vfork), SCMP_SYS(unshare),
    SCMP_SYS(setns), SCMP_SYS(pidfd_open), SCMP_SYS(pidfd_getfd), SCMP_SYS(pidfd_send_signal),
    SCMP_SYS(rt_sigqueueinfo), SCMP_SYS(rt_tgsigqueueinfo), SCMP_SYS(tkill), SCMP_SYS(setpgid),
    SCMP_SYS(setsid), SCMP_SYS(setpriority), SCMP_SYS(sched_setscheduler), SCMP_SYS(sched_setparam),
    SCMP_SYS(sched_setattr),
    // what the rules for files leave open: other properties of files
    SCMP_SYS(chmod), SCMP_SYS(fchmod), SCMP_SYS(fchmodat), SCMP_SYS(chown), SCMP_SYS(fchown),
    SCMP_SYS(lchown), SCMP_SYS(fchownat), SCMP_SYS(utime), SCMP_SYS(utimes), SCMP_SYS(utimensat),
    SCMP_SYS(futimesat), SCMP_SYS(setxattr), SCMP_SYS(lsetxattr), SCMP_SYS(fsetxattr),
    SCMP_SYS(removexattr), SCMP_SYS(lremovexattr), SCMP_SYS(fremovexattr), SCMP_SYS(mknod),
    SCMP_SYS(mknodat), SCMP_SYS(inotify_init), SCMP_SYS(inotify_init1), SCMP_SYS(fanotify_init),
    SCMP_SYS(chroot), SCMP_SYS(name_to_handle_at), SCMP_SYS(open_by_handle_at),
    // meeting places of processes beside files
    SCMP_SYS(shmget), SCMP_SYS(shmat), SCMP_SYS(semget), SCMP_SYS(msgget), SCMP_SYS(mq_open),
    SCMP_SYS(mq_unlink), SCMP_SYS(add_key), SCMP_SYS(request_key), SCMP_SYS(keyctl),
    // large parts of the kernel
    SCMP_SYS(io_uring_setup), SCMP_SYS(io_uring_enter), SCMP_SYS(io_uring_register),
    SCMP_SYS(perf_event_open), SCMP_SYS(userfaultfd), SCMP_SYS(personality), SCMP_SYS(quotactl),
    SCMP_SYS(syslog), SCMP_SYS(lookup_dcookie), SCMP_SYS(ioperm), SCMP_SYS(iopl)};

/// What nothing innocent does.
constexpr auto kDeadly = {SCMP_SYS(ptrace),
                          SCMP_SYS(process_vm_readv),
                          SCMP_SYS(process_vm_writev),
                          SCMP_SYS(kcmp),
                          SCMP_SYS(bpf),
                          SCMP_SYS(mount),
                          SCMP_SYS(umount2),
                          SCMP_SYS(move_mount),
                          SCMP_SYS(open_tree),
                          SCMP_SYS(fsopen),
                          SCMP_SYS(fsmount),
                          SCMP_SYS(fsconfig),
                          SCMP_SYS(mount_setattr),
                          SCMP_SYS(pivot_root),
                          SCMP_SYS(init_module),
                          SCMP_SYS(finit_module),
                          SCMP_SYS(delete_module),
                          SCMP_SYS(kexec_load),
                          SCMP_SYS(kexec_file_load),
                          SCMP_SYS(reboot),
                          SCMP_SYS(swapon),
                          SCMP_SYS(swapoff),
                          SCMP_SYS(settimeofday),
                          SCMP_SYS(clock_settime),
                          SCMP_SYS(adjtimex),
                          SCMP_SYS(sethostname),
                          SCMP_SYS(setdomainname),
                          SCMP_SYS(acct)};

/// Calls that some machines do not have are left out.
bool add(scmp_filter_ctx filter, std::uint32_t action, int call) {
  const int failure = ::seccomp_rule_add(filter, action, call, 0);
  return failure == 0 || failure == -EDOM || failure == -EINVAL;
}

/// Written out, since the library's own macros for conditions are no C++.
bool refuseWhere(scmp_filter_ctx filter, int call, const scmp_arg_cmp& condition) {
  return ::seccomp_rule_add_array(filter, SCMP_ACT_ERRNO(EPERM), call, 1, &condition) == 0;
}

/// Threads may be made, processes not; signals go to the own process alone; nothing is typed into
/// the terminal.
bool addPartlyAllowed(scmp_filter_ctx filter) {
  const auto self = static_cast<scmp_datum_t>(::getpid());
  constexpr scmp_datum_t kInteger = 0xFFFFFFFF;  // the kernel looks at no more of a request
  // The newer call hides what it asks for behind a pointer; without it the C library takes the
  // other.
  return ::seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0) == 0 &&
         refuseWhere(filter, SCMP_SYS(clone), {0, SCMP_CMP_MASKED_EQ, CLONE_THREAD, 0}) &&
         refuseWhere(filter, SCMP_SYS(kill), {0, SCMP_CMP_NE, self, 0}) &&
         refuseWhere(filter, SCMP_SYS(tgkill), {0, SCMP_CMP_NE, self, 0}) &&
         refuseWhere(filter, SCMP_SYS(prlimit64), {0, SCMP_CMP_NE, 0, 0}) &&
         refuseWhere(filter, SCMP_SYS(ioctl), {1, SCMP_CMP_MASKED_EQ, kInteger, TIOCSTI}) &&
         refuseWhere(filter, SCMP_SYS(ioctl), {1, SCMP_CMP_MASKED_EQ, kInteger, TIOCLINUX});
}

bool fill(scmp_filter_ctx filter) {
  for (int call : kRefused)
    if (!add(filter, SCMP_ACT_ERRNO(EPERM), call)) return false;
  for (int call : kDeadly)
    if (!add(filter, SCMP_ACT_KILL_PROCESS, call)) return false;
  return addPartlyAllowed(filter);
}

}  // namespace

int enforceSystemCallRules() {
  const scmp_filter_ctx filter = ::seccomp_init(SCMP_ACT_ALLOW);
  if (!filter) return -ENOMEM;
  ::seccomp_attr_set(filter, SCMP_FLTATR_CTL_OPTIMIZE, 2);  // a tree instead of a list
  const int failure = fill(filter) ? ::seccomp_load(filter) : -EINVAL;
  ::seccomp_release(filter);
  return failure;
}

}  // namespace kbx
