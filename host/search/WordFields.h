// WordFields: the fields of the language of words, and the values that some of them know.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/search/Query.h"

namespace kbx {

/// What may stand before a colon.
struct WordField {
  enum class Kind : std::uint8_t { Text, Before, After, On, Has, Is };

  std::string_view name;
  Kind kind;
  TextField text = TextField::Any;  // of Text
};

/// The field of a name in either case; nullptr when there is none.
const WordField* fieldNamed(std::string_view name);
/// The name that was meant: a synonym's, or one that is spelt nearly so. Empty when unknown.
std::string_view nearestField(std::string_view name);

/// What the value of is: or has: tests; absent when it is none of theirs.
std::optional<FlagTest> flagNamed(const WordField& field, std::string_view value);
/// The same as nearestField(), for these values; may be a whole term, such as -is:flagged.
std::string nearestFlag(const WordField& field, std::string_view value);
/// "read, unread, …", for people.
std::string_view flagNames(const WordField& field);

}  // namespace kbx
