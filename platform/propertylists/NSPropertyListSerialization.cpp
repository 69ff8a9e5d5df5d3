#include "platform/propertylists/NSPropertyListSerialization.h"

#include <string>

#include "platform/objects/NSClass.h"
#include "platform/propertylists/BinaryPropertyListReader.h"
#include "platform/propertylists/BinaryPropertyListWriter.h"
#include "platform/propertylists/PropertyListCheck.h"
#include "platform/propertylists/PropertyListErrors.h"
#include "platform/propertylists/XMLPropertyListReader.h"
#include "platform/propertylists/XMLPropertyListWriter.h"

namespace kbx {

KBX_CLASS(NSPropertyListSerialization)

namespace {

/// The end of the sentence for a list that cannot be written; absent when it can.
std::optional<std::string> faultOf(NSObject* list, NSPropertyListFormat format) {
  if (!list) return "there is none";
  if (format != NSPropertyListXMLFormat_v1_0 && format != NSPropertyListBinaryFormat_v1_0)
    return "the format " + std::to_string(format) + " is not known";
  return std::nullopt;
}

}  // namespace

Ref<NSData> NSPropertyListSerialization::dataWithPropertyList(NSObject* list,
                                                              NSPropertyListFormat format,
                                                              std::uint64_t, Ref<NSError>* error) {
  if (auto fault = faultOf(list, format)) {
    failWritingPropertyList(error, NSPropertyListWriteInvalidError, *fault);
    return nullptr;
  }
  if (auto fault = faultInPropertyList(list, format)) {
    failWritingPropertyList(error, NSPropertyListWriteStreamError, *fault);
    return nullptr;
  }
  return format == NSPropertyListXMLFormat_v1_0 ? xmlFromPropertyList(list)
                                                : binaryFromPropertyList(list);
}

Ref<NSObject> NSPropertyListSerialization::propertyListWithData(NSData* data,
                                                                NSPropertyListReadOptions options,
                                                                NSPropertyListFormat* format,
                                                                Ref<NSError>* error) {
  if (!data) {
    failReadingPropertyList(error, "there is none");
    return nullptr;
  }
  const bool isMutable =
      options & (NSPropertyListMutableContainers | NSPropertyListMutableContainersAndLeaves);
  const bool isBinary = isBinaryPropertyList(data->view());
  PropertyListReading reading = isBinary ? propertyListFromBinary(data->view(), isMutable)
                                         : propertyListFromXML(data->view(), isMutable);
  if (!reading.list) {
    failReadingPropertyList(error, reading.fault);
    return nullptr;
  }
  if (format) *format = isBinary ? NSPropertyListBinaryFormat_v1_0 : NSPropertyListXMLFormat_v1_0;
  return reading.list;
}

}  // namespace kbx
