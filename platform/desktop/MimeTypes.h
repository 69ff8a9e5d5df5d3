// MimeTypes: the MIME types that the system knows for the names of files.
#pragma once

#include <string>
#include <string_view>

#include "platform/Export.h"
#include "platform/system/Service.h"

namespace kbx {

/// Called from any thread.
///
/// The system's answers come from the "mime/globs2" files in the folders of shared data, which are
/// read once, at the first question; without them nothing is known.
class KBX_PLATFORM MimeTypes {
 public:
  virtual ~MimeTypes();
  /// "image/png"; "" for a name of no known kind.
  virtual std::string typeOfName(std::string_view name) = 0;

  KBX_SERVICE_INTERFACE(MimeTypes)
};

}  // namespace kbx
