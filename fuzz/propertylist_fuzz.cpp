// Property lists of strangers: what is read can be written, and then stays the same. What is read
// as plain XML is the same to the reader of all XML.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/objects/NSError.h"
#include "platform/propertylists/NSPropertyListSerialization.h"
#include "platform/propertylists/PlainXMLPropertyList.h"
#include "platform/propertylists/XMLPropertyListReader.h"

namespace kbx {
namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

Ref<NSObject> read(NSData* bytes, NSPropertyListReadOptions options) {
  Ref<NSError> error;
  auto list = NSPropertyListSerialization::propertyListWithData(bytes, options, nullptr, &error);
  require((list != nullptr) == (error == nullptr));
  require(list || error->code() == NSPropertyListReadCorruptError);
  return list;
}

/// Absent only for what a format cannot hold, which the error says.
Ref<NSData> write(NSObject* list, NSPropertyListFormat format) {
  Ref<NSError> error;
  auto bytes = NSPropertyListSerialization::dataWithPropertyList(list, format, 0, &error);
  require((bytes != nullptr) == (error == nullptr));
  require(bytes || error->code() == NSPropertyListWriteStreamError);
  return bytes;
}

void checkFormat(NSObject* list, NSPropertyListFormat format) {
  auto bytes = write(list, format);
  if (!bytes) return;
  for (NSPropertyListReadOptions options :
       {NSPropertyListImmutable, NSPropertyListMutableContainers}) {
    auto again = read(bytes, options);
    require(again);
    require(isEqual(write(again, format), bytes));
  }
}

void checkPlainXML(NSData* input) {
  auto plain = propertyListFromPlainXML(input->view(), false);
  if (!plain) return;
  auto full = propertyListFromXML(std::string(input->view()) + "<!-- -->", false).list;
  require(full);
  auto bytes = write(plain, NSPropertyListXMLFormat_v1_0);
  require(bytes && isEqual(write(full, NSPropertyListXMLFormat_v1_0), bytes));
}

}  // namespace
}  // namespace kbx

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace kbx;
  auto input = NSData::dataWithBytes(bytes, size);
  auto list = read(input, NSPropertyListImmutable);
  require((list != nullptr) == (read(input, NSPropertyListMutableContainers) != nullptr));
  checkPlainXML(input);
  if (!list) return 0;
  checkFormat(list, NSPropertyListXMLFormat_v1_0);
  checkFormat(list, NSPropertyListBinaryFormat_v1_0);
  return 0;
}
