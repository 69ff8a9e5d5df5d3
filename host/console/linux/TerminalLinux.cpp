#include <sys/ioctl.h>
#include <unistd.h>

#include <string>

#include "host/console/Terminal.h"
#include "platform/desktop/DesktopFolders.h"

namespace kbx {

unsigned terminalColumns(int descriptor) {
  constexpr unsigned kUsual = 80;
  if (::isatty(descriptor) == 0) return 0;
  const auto kind = environmentVariable("TERM");
  if (!kind || kind->empty() || *kind == "dumb") return 0;
  struct winsize size {};
  const bool isKnown = ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? size.ws_col : kUsual;
}

}  // namespace kbx
