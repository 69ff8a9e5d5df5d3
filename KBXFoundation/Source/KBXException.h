// KBXException: an exception whose reason says where it was raised.
#pragma once

#include "platform/objects/NSException.h"

namespace kbx {

/// The user-info key of the location text, such as "KBXEMLXFile:14 -initWithMessageData:".
inline NSString* exceptionLocationKey() { return "KBXExceptionLocation"_ns; }

/// What failed preconditions and assertions raise. Immutable; may be shared between threads.
class KBXException final : public NSException {
  KBX_OBJECT(KBXException, NSException)
 public:
  /// Each may be absent; the location is read from the user info.
  /// (exceptionWithName:reason:userInfo:)
  static Ref<KBXException> exceptionWithName(NSString* name, NSString* reason,
                                             NSDictionary* userInfo);

  /// The base reason, " at " and the location; an absent one of them prints "(null)". Never absent.
  /// (reason)
  Ref<NSString> reason() const override;
  /// The base reason alone. (kbxReason)
  Ref<NSString> kbxReason() const;

 private:
  using NSException::NSException;
};

}  // namespace kbx
