#include "host/import/PrivateFiles.h"

#include <sys/stat.h>

namespace kbx {

void keepNewFilesPrivate() { ::umask(S_IRWXG | S_IRWXO); }

}  // namespace kbx
