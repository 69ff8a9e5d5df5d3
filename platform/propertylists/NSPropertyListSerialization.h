// NSPropertyListSerialization: property lists as bytes, in the XML and the binary form.
#pragma once

#include <cstdint>

#include "platform/objects/NSData.h"
#include "platform/objects/NSError.h"

namespace kbx {

enum NSPropertyListFormat : std::uint64_t {
  NSPropertyListXMLFormat_v1_0 = 100,
  NSPropertyListBinaryFormat_v1_0 = 200,
};

/// How changeable what is read shall be; leaves are immutable whatever is asked.
enum NSPropertyListMutabilityOptions : std::uint64_t {
  NSPropertyListImmutable = 0,
  NSPropertyListMutableContainers = 1,
  NSPropertyListMutableContainersAndLeaves = 2,
};
using NSPropertyListReadOptions = std::uint64_t;

/// Writes and reads property lists: dictionaries with strings as keys, arrays, strings, numbers,
/// booleans, dates and data, at most 512 containers deep. Safe from any thread.
class KBX_PLATFORM NSPropertyListSerialization final : public NSObject {
  KBX_OBJECT(NSPropertyListSerialization, NSObject)
 public:
  /// The bytes of a list, the keys of each dictionary in the order of their code units.
  /// (dataWithPropertyList:format:options:error:)
  ///
  /// list     required
  /// options  none are known; anything is accepted
  ///
  /// Fails in NSCocoaErrorDomain, with a description that names the key path: 3851 where the list
  /// holds what the format cannot hold (other objects, text with a surrogate alone, in XML also
  /// control characters and dates beyond the calendar), 3852 for a missing list or another format.
  static Ref<NSData> dataWithPropertyList(NSObject* list, NSPropertyListFormat format,
                                          std::uint64_t options, Ref<NSError>* error);

  /// The list in the bytes, whose own beginning tells the format.
  /// (propertyListWithData:options:format:error:)
  ///
  /// data     required
  /// options  of NSPropertyListMutabilityOptions
  /// format   where to store the format that was found; may be absent
  ///
  /// Fails in NSCocoaErrorDomain with 3840 and a description that names the line or the byte.
  static Ref<NSObject> propertyListWithData(NSData* data, NSPropertyListReadOptions options,
                                            NSPropertyListFormat* format, Ref<NSError>* error);
};

}  // namespace kbx
