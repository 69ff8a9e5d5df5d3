#include "NSDictionary+KBXPropertyListSerialization.h"

#include "NSError+KBX.h"
#include "NSObject+KBX.h"
#include "NSPropertyListSerialization+KBX.h"

namespace kbx {
namespace {

bool isMutableDictionaryClass(const NSClass* candidate) {
  while (candidate && candidate != NSMutableDictionary::classObject())
    candidate = candidate->superclass();
  return candidate;
}

}  // namespace

Ref<NSDictionary> kbxReadURL(NSClass* receiver, NSURL* url, Ref<NSError>* error) {
  const NSPropertyListReadOptions options = isMutableDictionaryClass(receiver)
                                                ? NSPropertyListMutableContainers
                                                : NSPropertyListImmutable;
  auto plist = kbxReadURL(url, options, nullptr, error);
  // A list that could not be read is no dictionary either, and gets the frame on top of its own.
  auto dictionary = kbxEnsureClass(plist, NSDictionary::classObject(), error);
  if (!dictionary)
    passOn(error, {"+[NSDictionary(KBXPropertyListSerialization) kbxReadURL:error:]", 122});
  return cast<NSDictionary>(dictionary);
}

bool kbxWriteXMLToURL(NSDictionary* dictionary, NSURL* url, Ref<NSError>* error) {
  return dictionary && kbxWritePropertyList(dictionary, url, NSPropertyListXMLFormat_v1_0, error);
}

bool kbxWriteBinaryToURL(NSDictionary* dictionary, NSURL* url, Ref<NSError>* error) {
  return dictionary &&
         kbxWritePropertyList(dictionary, url, NSPropertyListBinaryFormat_v1_0, error);
}

}  // namespace kbx
