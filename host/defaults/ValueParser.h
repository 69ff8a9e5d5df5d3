// ValueParser: values of property lists as people write them on a command line.
#pragma once

#include <stdexcept>

#include "platform/objects/NSData.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// A text that begins like a list and is none. Says what is wrong and where.
struct ValueFault : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The value of a text; docs/command-line.md has the forms. Never absent.
///
/// A text that begins with { ( " or < is a dictionary, an array, a quoted string, data or an XML
/// property list, and raises ValueFault when it is malformed or more than 512 levels deep. Any
/// other text is the number, boolean or date that valueOfWord() finds in it, or itself.
Ref<NSObject> valueOfText(NSString* text);

/// The bytes of hexadecimal digits, blanks anywhere between them; absent for other characters and
/// for an odd number of digits.
Ref<NSData> dataOfDigits(std::string_view text);

/// Letters, digits and _ $ / : . + - @, of which strings without quotes consist inside a list.
constexpr bool isWordUnit(char16_t unit) {
  return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') ||
         (unit >= '0' && unit <= '9') || unit == '_' || unit == '$' || unit == '/' || unit == ':' ||
         unit == '.' || unit == '+' || unit == '-' || unit == '@';
}

}  // namespace kbx
