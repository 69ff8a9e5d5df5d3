/* MDImporter: the interfaces of a metadata importer and the names of attributes. Plain C. */
#pragma once

#include "platform/CoreFoundation.h"

#ifdef __cplusplus
extern "C" {
#endif

/* 8B08C4BF-415B-11D8-B3F9-0003936726FC: the type that an importer's factories serve. */
#define kMDImporterTypeID                                                                       \
  CFUUIDGetConstantUUIDWithBytes(kCFAllocatorDefault, 0x8B, 0x08, 0xC4, 0xBF, 0x41, 0x5B, 0x11, \
                                 0xD8, 0xB3, 0xF9, 0x00, 0x03, 0x93, 0x67, 0x26, 0xFC)

/* 6EBC27C4-899C-11D8-84AE-0003936726FC: import of a path. */
#define kMDImporterInterfaceID                                                                  \
  CFUUIDGetConstantUUIDWithBytes(kCFAllocatorDefault, 0x6E, 0xBC, 0x27, 0xC4, 0x89, 0x9C, 0x11, \
                                 0xD8, 0x84, 0xAE, 0x00, 0x03, 0x93, 0x67, 0x26, 0xFC)

/* 13F60F02-3622-4F35-9891-EC10E6CD08F8: import of a file URL. */
#define kMDImporterURLInterfaceID                                                               \
  CFUUIDGetConstantUUIDWithBytes(kCFAllocatorDefault, 0x13, 0xF6, 0x0F, 0x02, 0x36, 0x22, 0x4F, \
                                 0x35, 0x98, 0x91, 0xEC, 0x10, 0xE6, 0xCD, 0x08, 0xF8)

/* The function table behind kMDImporterInterfaceID. The function sets the attributes that it finds
   and answers whether the import went well. */
typedef struct {
  IUNKNOWN_C_GUTS;
  Boolean (*ImporterImportData)(void* thisInterface, CFMutableDictionaryRef attributes,
                                CFStringRef contentType, CFStringRef path);
} MDImporterInterfaceStruct;

/* The function table behind kMDImporterURLInterfaceID. */
typedef struct {
  IUNKNOWN_C_GUTS;
  Boolean (*ImporterImportURLData)(void* thisInterface, CFMutableDictionaryRef attributes,
                                   CFStringRef contentType, CFURLRef url);
} MDImporterURLInterfaceStruct;

/* Attribute names: the plain text of a document, and its HTML text. */
KBX_PLATFORM extern const CFStringRef kMDItemTextContent;
KBX_PLATFORM extern const CFStringRef kMDItemHTMLContent;

#ifdef __cplusplus
}
#endif
