#include "Misdeeds.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/ptrace.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <string>

#include "platform/files/NSURL.h"
#include "platform/objects/NSNumber.h"
#include "platform/objects/NSString.h"

namespace kbx {
namespace {

void tell(NSMutableDictionary* attributes, int failure) {
  attributes->setObjectForKey(NSNumber::numberWithInteger(failure), "TestMailFailure"_ns);
}

/// A sanitizer that sees it coming would end the process in a way of its own.
__attribute__((no_sanitize("undefined"))) int crash() {
  volatile int* volatile nowhere = nullptr;
  *nowhere = 1;
  return 0;
}

int takeMemory() {
  constexpr std::size_t kBlock = 16 << 20;
  while (true) std::memset(new char[kBlock], 1, kBlock);
}

int spin() {
  const volatile bool isGoingOn = true;
  while (isGoingOn) continue;
  return 0;
}

/// The error number, or 0.
int failureOf(int answer) { return answer < 0 ? errno : 0; }

int connectSomewhere() {
  const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (descriptor < 0) return errno;
  sockaddr_in nobody{};
  nobody.sin_family = AF_INET;
  const int answer =
      ::connect(descriptor, reinterpret_cast<const sockaddr*>(&nobody), sizeof nobody);
  const int failure = failureOf(answer);
  ::close(descriptor);
  return failure;
}

int runProgram() {
  char path[] = "/bin/true";
  char* arguments[] = {path, nullptr};
  return failureOf(::execv(path, arguments));
}

int forkProcess() {
  const pid_t process = ::fork();
  if (process == 0) ::_exit(0);
  return failureOf(process);
}

int openFile(const std::string& path, int flags) {
  const int descriptor = ::open(path.c_str(), flags | O_CLOEXEC, 0600);
  const int failure = failureOf(descriptor);
  if (descriptor >= 0) ::close(descriptor);
  return failure;
}

int chatter() {
  std::puts("on standard output");
  std::fflush(stdout);
  std::fputs("on standard error\n", stderr);
  return 0;
}

const std::map<std::string, std::function<int()>, std::less<>> kDeeds = {
    {"crash", crash},
    {"abort", [] { return std::abort(), 0; }},
    {"exit", [] { return std::exit(7), 0; }},
    {"hang", [] { return ::pause(), ::pause(), 0; }},
    {"spin", spin},
    {"odd-throw", []() -> int { throw 42; }},
    {"memory", takeMemory},
    {"trace", [] { return failureOf(static_cast<int>(::ptrace(PTRACE_ATTACH, 1, 0, 0))); }},
    {"connect", connectSomewhere},
    {"run", runProgram},
    {"fork", forkProcess},
    {"signal", [] { return failureOf(::kill(::getppid(), 0)); }},
    {"chatter", chatter},
};

}  // namespace

bool doMisdeed(std::string_view name, NSMutableDictionary* attributes) {
  const auto deed = kDeeds.find(name);
  if (deed != kDeeds.end())
    tell(attributes, deed->second());
  else if (name.starts_with('/'))
    tell(attributes, openFile(std::string(name), O_RDONLY));
  else if (name.starts_with("make "))
    tell(attributes, openFile(std::string(name.substr(5)), O_WRONLY | O_CREAT));
  else if (name.starts_with("change "))
    tell(attributes, failureOf(::chmod(std::string(name.substr(7)).c_str(), 0777)));
  else if (name == "odd-value")
    attributes->setObjectForKey(NSURL::fileURLWithFileSystemRepresentation("/", true),
                                "TestMailValue"_ns);
  else if (name == "odd-key")
    attributes->setObjectForKey("x"_ns, NSNumber::numberWithInteger(1));
  else
    return false;
  return true;
}

}  // namespace kbx
