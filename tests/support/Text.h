// Short ways to say texts and bytes in tests.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/objects/NSData.h"
#include "platform/objects/NSString.h"
#include "platform/text/Format.h"

namespace kbx {

inline Ref<NSString> string(std::string_view utf8) { return NSString::stringWithUTF8(utf8); }
inline Ref<NSData> data(std::string_view bytes) { return NSData::dataWithBytes(bytes); }
// Better than std::data, which argument-dependent lookup would find for these.
inline Ref<NSData> data(const char* bytes) { return data(std::string_view(bytes)); }
inline Ref<NSData> data(const std::string& bytes) { return NSData::dataWithBytes(bytes); }
inline Ref<NSData> data(std::string& bytes) { return NSData::dataWithBytes(bytes); }

/// What "%@" prints, as UTF-8; "(null)" for an absent object.
inline std::string text(NSObject* object) { return descriptionOf(object)->lossyUTF8(); }
/// The bytes of a buffer; "(null)" for an absent one.
inline std::string text(NSData* data) { return data ? std::string(data->view()) : "(null)"; }

}  // namespace kbx
