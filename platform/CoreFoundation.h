/* CoreFoundation: the C types and functions of the plug-in border. Plain C, for both its sides. */
#pragma once

#include "platform/Export.h"

/*
 * A reference is the address of one of the platform's objects, so nothing is converted or copied
 * at the border. Functions with Create or Copy in their name, and those that find factories, give
 * the caller one reference, which CFRelease takes back; what a Get function answers stays with its
 * owner. Unless noted, an absent argument gives an absent, zero or false answer. The functions are
 * as safe to call from any thread as the objects are.
 */

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef unsigned int UInt32;
typedef int SInt32;
typedef long CFIndex;

typedef const void* CFTypeRef;
typedef const struct OpaqueCFAllocator* CFAllocatorRef;
typedef const struct OpaqueCFString* CFStringRef;
typedef const struct OpaqueCFArray* CFArrayRef;
typedef const struct OpaqueCFDictionary* CFDictionaryRef;
typedef struct OpaqueCFDictionary* CFMutableDictionaryRef;
typedef const struct OpaqueCFURL* CFURLRef;
typedef const struct OpaqueCFUUID* CFUUIDRef;
typedef struct OpaqueCFPlugIn* CFPlugInRef;

/* ---- Any object ---------------------------------------------------------------------------- */

/* The one allocator, absent. No function looks at the allocator that it is given. */
KBX_PLATFORM extern const CFAllocatorRef kCFAllocatorDefault;

/* Both ignore an absent object; CFRetain answers its argument. */
KBX_PLATFORM CFTypeRef CFRetain(CFTypeRef object);
KBX_PLATFORM void CFRelease(CFTypeRef object);
KBX_PLATFORM Boolean CFEqual(CFTypeRef first, CFTypeRef second);

/* ---- Text ---------------------------------------------------------------------------------- */

typedef UInt32 CFStringEncoding;
enum { kCFStringEncodingASCII = 0x0600, kCFStringEncodingUTF8 = 0x08000100 };

/* The constant string of a UTF-8 literal: one object for each text, never freed. */
#define CFSTR(text) CFStringMakeConstantString("" text "")
KBX_PLATFORM CFStringRef CFStringMakeConstantString(const char* text);

/* Absent for bytes that are malformed, and for any encoding but the two above. */
KBX_PLATFORM CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                                   CFStringEncoding encoding);
/* In UTF-16 units. */
KBX_PLATFORM CFIndex CFStringGetLength(CFStringRef string);
/* Enough bytes for `length` units, without the closing zero; -1 for an unknown encoding. */
KBX_PLATFORM CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
/* False, with an empty or untouched buffer, when the text with its closing zero does not fit or
   cannot be written in the encoding. */
KBX_PLATFORM Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                                        CFStringEncoding encoding);

/* ---- Collections --------------------------------------------------------------------------- */

KBX_PLATFORM CFIndex CFArrayGetCount(CFArrayRef array);
/* Absent, too, for an index outside the array. */
KBX_PLATFORM const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

KBX_PLATFORM CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
KBX_PLATFORM const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
/* Keys and values are objects. Does nothing when one of them is absent. */
KBX_PLATFORM void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key,
                                       const void* value);

/* ---- File URLs ----------------------------------------------------------------------------- */

typedef CFIndex CFURLPathStyle;
enum { kCFURLPOSIXPathStyle = 0 };

/* Absent for an absent or empty path and for any other style. */
KBX_PLATFORM CFURLRef CFURLCreateWithFileSystemPath(CFAllocatorRef allocator, CFStringRef path,
                                                    CFURLPathStyle style, Boolean isDirectory);
KBX_PLATFORM CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
/* The bytes of the path with a closing zero. False when they do not fit. */
KBX_PLATFORM Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase,
                                                      UInt8* buffer, CFIndex size);

/* The location of a path's bytes; absent for none, and where a NUL is among them. */
KBX_PLATFORM CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator,
                                                              const UInt8* path, CFIndex length,
                                                              Boolean isDirectory);
/* Makes the next question for the resource key ask the system. */
KBX_PLATFORM void CFURLClearResourcePropertyCacheForKey(CFURLRef url, CFStringRef key);

/* ---- UUIDs --------------------------------------------------------------------------------- */

typedef struct {
  UInt8 byte0, byte1, byte2, byte3, byte4, byte5, byte6, byte7;
  UInt8 byte8, byte9, byte10, byte11, byte12, byte13, byte14, byte15;
} CFUUIDBytes;

/* Equal UUIDs are the same object while somebody holds it. A random one: */
KBX_PLATFORM CFUUIDRef CFUUIDCreate(CFAllocatorRef allocator);
KBX_PLATFORM CFUUIDRef CFUUIDCreateFromUUIDBytes(CFAllocatorRef allocator, CFUUIDBytes bytes);
/* Upper or lower case, with or without hyphens and braces; absent for any other text. */
KBX_PLATFORM CFUUIDRef CFUUIDCreateFromString(CFAllocatorRef allocator, CFStringRef text);
/* Never freed, and not to be released. */
KBX_PLATFORM CFUUIDRef CFUUIDGetConstantUUIDWithBytes(CFAllocatorRef allocator, UInt8 byte0,
                                                      UInt8 byte1, UInt8 byte2, UInt8 byte3,
                                                      UInt8 byte4, UInt8 byte5, UInt8 byte6,
                                                      UInt8 byte7, UInt8 byte8, UInt8 byte9,
                                                      UInt8 byte10, UInt8 byte11, UInt8 byte12,
                                                      UInt8 byte13, UInt8 byte14, UInt8 byte15);
/* Upper case with hyphens. */
KBX_PLATFORM CFStringRef CFUUIDCreateString(CFAllocatorRef allocator, CFUUIDRef uuid);
/* Zeros for an absent UUID. */
KBX_PLATFORM CFUUIDBytes CFUUIDGetUUIDBytes(CFUUIDRef uuid);

/* ---- Interfaces ---------------------------------------------------------------------------- */

/* An interface is the address of a pointer to its function table. */
typedef SInt32 HRESULT;
typedef UInt32 ULONG;
typedef void* LPVOID;
typedef CFUUIDBytes REFIID;

#define S_OK 0
#define E_NOINTERFACE (-2147483644) /* 0x80000004: the interface is not supported */

/* The first four slots of every function table. */
#define IUNKNOWN_C_GUTS                                                               \
  void* _reserved;                                                                    \
  HRESULT (*QueryInterface)(void* thisPointer, REFIID identifier, LPVOID* interface); \
  ULONG (*AddRef)(void* thisPointer);                                                 \
  ULONG (*Release)(void* thisPointer)

typedef struct IUnknownVTbl {
  IUNKNOWN_C_GUTS;
} IUnknownVTbl;

#define IUnknownUUID                                                                            \
  CFUUIDGetConstantUUIDWithBytes(kCFAllocatorDefault, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, \
                                 0x00, 0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46)

/* ---- Plug-ins: docs/plugin-loader.md ------------------------------------------------------- */

/* What a bundle names in CFPlugInFactories: makes an instance of the type, or nothing. */
typedef void* (*CFPlugInFactoryFunction)(CFAllocatorRef allocator, CFUUIDRef type);

/* The plug-in of a bundle; the same path gives the same object while somebody holds it. Absent for
   what is no folder, and when another bundle has registered one of its factories. */
KBX_PLATFORM CFPlugInRef CFPlugInCreate(CFAllocatorRef allocator, CFURLRef bundle);
/* The UUIDs of the factories for the type, in the order of the bundle's property list; absent
   while no plug-in of the process serves the type. The caller releases the array. */
KBX_PLATFORM CFArrayRef CFPlugInFindFactoriesForPlugInTypeInPlugIn(CFUUIDRef type,
                                                                   CFPlugInRef plugIn);
/* An instance with one reference, released through its own function table. Opens the bundle's
   executable when it is the first. */
KBX_PLATFORM void* CFPlugInInstanceCreate(CFAllocatorRef allocator, CFUUIDRef factory,
                                          CFUUIDRef type);
/* Called by an instance when it begins and ends: keeps its bundle in between. */
KBX_PLATFORM void CFPlugInAddInstanceForFactory(CFUUIDRef factory);
KBX_PLATFORM void CFPlugInRemoveInstanceForFactory(CFUUIDRef factory);

#ifdef __cplusplus
}
#endif
