// FerncaseErrors: failures that the host finds itself.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/objects/NSError.h"

namespace kbx {

inline NSString* FerncaseErrorDomain() { return "FerncaseErrorDomain"_ns; }

enum FerncaseErrorCode : std::int64_t {
  FerncaseImportFailedError = 1,    // the importer gave no attributes
  FerncaseNoMessagesError = 2,      // a folder without a message
  FerncaseImpossiblePathError = 3,  // a path that no file can have
  FerncaseStagingFailedError = 4,   // no private folder, or no link in it
  FerncaseWorkerEndedError = 5,     // the process that imported crashed, hung or was ended
  FerncaseNoWorkerError = 6         // there is no process that could import; says nothing of a file
};

/// An error of our domain. The description is shown as it is.
Ref<NSError> ferncaseError(FerncaseErrorCode code, NSString* description);
Ref<NSError> ferncaseError(FerncaseErrorCode code, std::string_view description);

}  // namespace kbx
