// NSKeyedArchiver: objects and what they hold, as bytes.
#pragma once

#include <string_view>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSString.h"

namespace kbx {

inline NSString* NSInvalidArchiveOperationException() {
  return "NSInvalidArchiveOperationException"_ns;
}
inline NSString* NSInvalidUnarchiveOperationException() {
  return "NSInvalidUnarchiveOperationException"_ns;
}

/// Writes keyed archives in the binary form. Safe from any thread.
class KBX_PLATFORM NSKeyedArchiver final : public NSObject {
  KBX_OBJECT(NSKeyedArchiver, NSObject)
 public:
  /// An archive of an object and of all that it holds. (archivedDataWithRootObject:)
  ///
  /// root  absent is archived too
  ///
  /// Strings, numbers, dates, data, arrays, dictionaries (mutable ones as such), URLs, errors and
  /// the null marker can be archived, and classes that adopt NSCoding, by their name. Instances of
  /// a subclass are archived as what they inherit from. An object that is held at several places is
  /// written once; so are equal texts, numbers and data of up to 256 bytes.
  ///
  /// Raises NSInvalidArgumentException ("-[Widget encodeWithCoder:]: unrecognized selector …") for
  /// any other object, and NSInvalidArchiveOperationException for more than 512 levels of objects
  /// and for dictionaries with collections, errors or classes as keys.
  static Ref<NSData> archivedDataWithRootObject(NSObject* root);
};

/// Raises NSInvalidArchiveOperationException with a UTF-8 reason.
[[noreturn]] void raiseInvalidArchiveOperation(std::string_view reason);

}  // namespace kbx
