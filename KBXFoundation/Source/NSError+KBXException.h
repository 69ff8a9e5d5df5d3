// NSError(KBX): exceptions as errors.
#pragma once

#include "platform/objects/NSError.h"

namespace kbx {

class NSException;

/// Error 5 of the library's domain: the exception's user info, its name as the description, name,
/// reason and stack trace as the failure reason, and its reason as the recovery suggestion.
/// (kbxErrorFromException:)
///
/// exception  raises NSInvalidArgumentException when it, its name or its reason is absent
///
/// Where the exception answers kbxStackTrace or kbxShortStackTrace these are told as well; without
/// the first the trace is "<unknown>".
Ref<NSError> kbxErrorFromException(NSException* exception);

}  // namespace kbx
