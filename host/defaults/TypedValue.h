// TypedValue: the value that the last words of `ferncase defaults write` make.
#pragma once

#include <span>
#include <string>

#include "platform/objects/NSObject.h"

namespace kbx {

/// Whether the word says of what type the next ones are: -string, -data, -int, -float, -bool,
/// -date, -array, -dict, or another spelling of one of them.
bool isValueType(const std::string& word);

/// The value of all the words: one text, or a type and what belongs to it. Elements of -array and
/// values of -dict may have types themselves, but no -array and no -dict.
///
/// Raises UsageError.
Ref<NSObject> typedValue(std::span<const std::string> words);

}  // namespace kbx
