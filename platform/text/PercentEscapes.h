// Percent escapes: text made fit for a URL, and back.
#pragma once

#include <string_view>

#include "platform/Export.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// The text with its percent escapes replaced by what they stand for, as UTF-8.
/// (CFURLCreateStringByReplacingPercentEscapes)
///
/// charactersToLeaveEscaped  characters whose escapes stay as they are written; absent leaves
///                           every escape, right or wrong
///
/// Absent for an absent text, for an escape that is not two hexadecimal digits and for escapes
/// whose bytes are not UTF-8. Everything else stays, a lone surrogate too.
KBX_PLATFORM Ref<NSString> stringByReplacingPercentEscapes(NSString* text,
                                                           NSString* charactersToLeaveEscaped);

/// The text with percent escapes, in UTF-8 and upper case, for what a URL may not hold: all but
/// ASCII letters, digits and -_.!~*'()$&+,/:;=?@ (CFURLCreateStringByAddingPercentEscapes)
///
/// charactersToLeaveUnescaped   other characters that stay, or absent
/// legalURLCharactersToBeEscaped  characters of those above that are escaped nevertheless, or
/// absent
///
/// Absent for an absent text and for one with a lone surrogate.
KBX_PLATFORM Ref<NSString> stringByAddingPercentEscapes(NSString* text,
                                                        NSString* charactersToLeaveUnescaped,
                                                        NSString* legalURLCharactersToBeEscaped);

/// The same for a set of ASCII characters: all others are escaped.
/// (stringByAddingPercentEncodingWithAllowedCharacters:)
KBX_PLATFORM Ref<NSString> stringByAddingPercentEncoding(NSString* text,
                                                         std::string_view allowedCharacters);

/// What the query of a URL may hold, as text. (URLQueryAllowedCharacterSet)
inline constexpr std::string_view kURLQueryAllowedCharacters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~!$&'()*+,;=:@/?";

}  // namespace kbx
