// NSPropertyListSerialization(KBX): property lists as data and as files, with errors that tell
// which list, which file and which functions failed.
#pragma once

#include "platform/files/NSURL.h"
#include "platform/propertylists/NSPropertyListSerialization.h"

namespace kbx {

// A missing list, buffer or location is error 901 "plist", "data" or "url"; other failures are the
// platform's errors with the stack frames of the functions here. All are safe from any thread.

/// The bytes of a list. (kbxDataFromPropertyList:format:error:)
///
/// A failure has the list as its failing object.
Ref<NSData> kbxDataFromPropertyList(NSObject* plist, NSPropertyListFormat format,
                                    Ref<NSError>* error);

/// The same in the binary format. (kbxBinaryFrom:error:)
Ref<NSData> kbxBinaryFrom(NSObject* plist, Ref<NSError>* error);

/// Stores a list in a file. (kbxWritePropertyList:toURL:format:error:)
///
/// A list that cannot be written gives an error with the file and the list.
bool kbxWritePropertyList(NSObject* plist, NSURL* url, NSPropertyListFormat format,
                          Ref<NSError>* error);

/// The list in the bytes. (kbxPropertyListFromData:options:format:error:)
///
/// options  of NSPropertyListMutabilityOptions
/// format   where to store the format that was found; may be absent
///
/// A failure has the first 1024 bytes as its failing object.
Ref<NSObject> kbxPropertyListFromData(NSData* data, NSPropertyListReadOptions options,
                                      NSPropertyListFormat* format, Ref<NSError>* error);

/// The same with immutable containers. (kbxReadData:error:)
Ref<NSObject> kbxReadData(NSData* data, Ref<NSError>* error);

/// The list in a file. (kbxPropertyListWithContentsOfURL:options:format:error:)
///
/// A file that holds no list gives an error with the file and its first 1024 bytes.
Ref<NSObject> kbxPropertyListWithContentsOfURL(NSURL* url, NSPropertyListReadOptions options,
                                               NSPropertyListFormat* format, Ref<NSError>* error);

/// The same. (kbxReadURL:options:format:error:)
Ref<NSObject> kbxReadURL(NSURL* url, NSPropertyListReadOptions options,
                         NSPropertyListFormat* format, Ref<NSError>* error);

/// The same with immutable containers. (kbxReadURL:error:)
Ref<NSObject> kbxReadURL(NSURL* url, Ref<NSError>* error);

}  // namespace kbx
