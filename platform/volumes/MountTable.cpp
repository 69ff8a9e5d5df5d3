#include "platform/volumes/MountTable.h"

namespace kbx {

MountTable::~MountTable() = default;

}  // namespace kbx
