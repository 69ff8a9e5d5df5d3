// NSKeyedUnarchiver: objects from the bytes that NSKeyedArchiver makes.
#pragma once

#include "platform/archives/NSKeyedArchiver.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// Codes of NSCocoaErrorDomain for archives.
inline constexpr std::int64_t NSCoderReadCorruptError = 4864;
inline constexpr std::int64_t NSCoderValueNotFoundError = 4865;

/// Reads keyed archives in the binary form, whoever wrote them. Safe from any thread.
///
/// What was one object at several places is one object again, and mutable collections may hold
/// themselves. NSMutableString becomes an ordinary string. A location may be relative to a base,
/// which it is joined with. Beyond what NSKeyedArchiver can write nothing is read: other classes,
/// other schemes of locations, more than 512 levels, dictionaries with other keys. Parts that are
/// not known are passed over.
class KBX_PLATFORM NSKeyedUnarchiver final : public NSObject {
  KBX_OBJECT(NSKeyedUnarchiver, NSObject)
 public:
  /// The root of an archive; absent, without an error, when an absent object was archived.
  /// (unarchiveTopLevelObjectWithData:error:)
  ///
  /// Fails in NSCocoaErrorDomain: 4864 with a description that says what is wrong, 4865 for an
  /// archive without a root.
  static Ref<NSObject> unarchiveTopLevelObjectWithData(NSData* data, Ref<NSError>* error);

  /// The same, but raises NSInvalidUnarchiveOperationException instead of failing.
  /// (unarchiveObjectWithData:)
  static Ref<NSObject> unarchiveObjectWithData(NSData* data);
};

}  // namespace kbx
