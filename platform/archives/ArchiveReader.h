// ArchiveReader: objects from the bytes of a keyed archive.
#pragma once

#include <string>
#include <string_view>

#include "platform/objects/NSObject.h"

namespace kbx {

/// What came of reading: the root, which may be an absent object; or what is wrong, as the end of a
/// sentence. An archive without a root is no fault.
struct ArchiveReading {
  Ref<NSObject> root{};
  bool hasRoot = false;
  std::string fault{};
};

ArchiveReading readArchive(std::string_view bytes);

}  // namespace kbx
