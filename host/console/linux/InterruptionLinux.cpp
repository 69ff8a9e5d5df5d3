#include "host/console/Interruption.h"

#include <array>
#include <csignal>

namespace kbx {
namespace {

constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t wish = 0;  // the signal; 0 for none
bool isNoting = false;

void note(int signal) { wish = signal; }

bool isIgnored(int signal) {
  struct sigaction action {};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void setHandlers(void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
  for (int signal : kSignals)
    if (!isIgnored(signal)) ::sigaction(signal, &action, nullptr);
}

}  // namespace

Interruption::Interruption() {
  isNoting = true;
  setHandlers(note);
}

Interruption::~Interruption() {
  isNoting = false;
  setHandlers(SIG_DFL);
}

Interruption::Allowed::Allowed() {
  if (isNoting) setHandlers(SIG_DFL);
}

Interruption::Allowed::~Allowed() {
  if (isNoting) setHandlers(note);
}

bool Interruption::isWished() noexcept { return wish != 0; }

void Interruption::forget() noexcept { wish = 0; }

void Interruption::fulfil() {
  if (wish != 0) std::raise(wish);
}

}  // namespace kbx
