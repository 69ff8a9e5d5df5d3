// NSNull: the distinguished object that marks an absent value inside collections.
#pragma once

#include "platform/objects/NSObject.h"

namespace kbx {

class KBX_PLATFORM NSNull final : public NSObject {
  KBX_OBJECT(NSNull, NSObject)
 public:
  /// The one instance, never freed. (null)
  static NSNull* null();
  /// "<null>".
  Ref<NSString> description() const override;

 private:
  NSNull() = default;
};

}  // namespace kbx
