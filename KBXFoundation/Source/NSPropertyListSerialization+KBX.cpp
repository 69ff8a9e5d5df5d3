#include "NSPropertyListSerialization+KBX.h"

#include <algorithm>

#include "NSData+KBXFile.h"
#include "NSError+KBX.h"

namespace kbx {
namespace {

constexpr std::size_t kShownBytes = 1024;

constexpr char kDataFromList[] =
    "+[NSPropertyListSerialization(KBX) kbxDataFromPropertyList:format:error:]";
constexpr char kWriteList[] =
    "+[NSPropertyListSerialization(KBX) kbxWritePropertyList:toURL:format:error:]";
constexpr char kListFromData[] =
    "+[NSPropertyListSerialization(KBX) kbxPropertyListFromData:options:format:error:]";
constexpr char kListFromURL[] =
    "+[NSPropertyListSerialization(KBX) kbxPropertyListWithContentsOfURL:options:format:error:]";

void setFailingObject(Ref<NSError>* error, NSObject* object) {
  if (error) *error = kbxErrorBySettingFailingObject(*error, object);
}

void setFileURL(Ref<NSError>* error, NSURL* url) {
  if (error) *error = kbxErrorBySettingFileURL(*error, url);
}

}  // namespace

Ref<NSData> kbxDataFromPropertyList(NSObject* plist, NSPropertyListFormat format,
                                    Ref<NSError>* error) {
  KBX_REQUIRE(plist, "plist", (Frame{kDataFromList, 13}), error);
  auto data = NSPropertyListSerialization::dataWithPropertyList(plist, format, 0, error);
  if (!data) {
    setFailingObject(error, plist);
    passOn(error, {kDataFromList, 21});
  }
  return data;
}

Ref<NSData> kbxBinaryFrom(NSObject* plist, Ref<NSError>* error) {
  return kbxDataFromPropertyList(plist, NSPropertyListBinaryFormat_v1_0, error);
}

bool kbxWritePropertyList(NSObject* plist, NSURL* url, NSPropertyListFormat format,
                          Ref<NSError>* error) {
  KBX_REQUIRE(plist, "plist", (Frame{kWriteList, 34}), error);
  auto data = kbxDataFromPropertyList(plist, format, error);
  if (!data) {
    setFileURL(error, url);
    setFailingObject(error, plist);
    passOn(error, {kWriteList, 39});
    return false;
  }
  if (!kbxWriteToURL(data, url, error)) {
    passOn(error, {kWriteList, 42});
    return false;
  }
  return true;
}

Ref<NSObject> kbxPropertyListFromData(NSData* data, NSPropertyListReadOptions options,
                                      NSPropertyListFormat* format, Ref<NSError>* error) {
  KBX_REQUIRE(data, "data", (Frame{kListFromData, 57}), error);
  auto plist = NSPropertyListSerialization::propertyListWithData(data, options, format, error);
  if (!plist) {
    if (error)
      setFailingObject(error, data->subdataWithRange({0, std::min(data->length(), kShownBytes)}));
    passOn(error, {kListFromData, 67});
  }
  return plist;
}

Ref<NSObject> kbxReadData(NSData* data, Ref<NSError>* error) {
  return kbxPropertyListFromData(data, NSPropertyListImmutable, nullptr, error);
}

Ref<NSObject> kbxPropertyListWithContentsOfURL(NSURL* url, NSPropertyListReadOptions options,
                                               NSPropertyListFormat* format, Ref<NSError>* error) {
  KBX_REQUIRE(url, "url", (Frame{kListFromURL, 74}), error);
  auto data = kbxReadFromURL(url, error);
  if (!data) {
    passOn(error, {kListFromURL, 77});
    return nullptr;
  }
  auto plist = kbxPropertyListFromData(data, options, format, error);
  if (!plist) {
    setFileURL(error, url);
    passOn(error, {kListFromURL, 85});
  }
  return plist;
}

Ref<NSObject> kbxReadURL(NSURL* url, NSPropertyListReadOptions options,
                         NSPropertyListFormat* format, Ref<NSError>* error) {
  return kbxPropertyListWithContentsOfURL(url, options, format, error);
}

Ref<NSObject> kbxReadURL(NSURL* url, Ref<NSError>* error) {
  return kbxReadURL(url, NSPropertyListImmutable, nullptr, error);
}

}  // namespace kbx
