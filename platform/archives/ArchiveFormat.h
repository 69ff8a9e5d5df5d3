// ArchiveFormat: the words of a keyed archive.
//
// An archive is a binary property list: a dictionary with the name of the archiver, a version, a
// list of all objects and a reference to the root. Texts, numbers and immutable data stand in the
// list as they are. Every other object is a dictionary with a reference to its class, which stands
// in the list as well, and with what it is made of; other objects are referred to by their place.
// At place 0 stands the absent object, the text "$null".
#pragma once

#include <cstdint>

#include "platform/objects/NSString.h"

namespace kbx::archive {

inline constexpr std::int64_t kVersion = 100000;

inline NSString* archiver() { return "$archiver"_ns; }
inline NSString* archiverName() { return "NSKeyedArchiver"_ns; }
inline NSString* version() { return "$version"_ns; }
inline NSString* objects() { return "$objects"_ns; }
inline NSString* top() { return "$top"_ns; }
inline NSString* root() { return "root"_ns; }
inline NSString* null() { return "$null"_ns; }

// Of every object that is a dictionary, and of the class that it refers to.
inline NSString* objectClass() { return "$class"_ns; }
inline NSString* className() { return "$classname"_ns; }
inline NSString* classNames() { return "$classes"_ns; }

// What objects are made of.
inline NSString* elements() { return "NS.objects"_ns; }
inline NSString* keys() { return "NS.keys"_ns; }
inline NSString* text() { return "NS.string"_ns; }
inline NSString* textBytes() { return "NS.bytes"_ns; }
inline NSString* bytes() { return "NS.data"_ns; }
inline NSString* seconds() { return "NS.time"_ns; }
inline NSString* base() { return "NS.base"_ns; }
inline NSString* relative() { return "NS.relative"_ns; }
inline NSString* errorDomain() { return "NSDomain"_ns; }
inline NSString* errorCode() { return "NSCode"_ns; }
inline NSString* errorUserInfo() { return "NSUserInfo"_ns; }
// Our own: a class as an object.
inline NSString* nameOfClass() { return "NS.name"_ns; }

}  // namespace kbx::archive
