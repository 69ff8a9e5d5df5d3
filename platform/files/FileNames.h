// File names as text and back: the file-system representation.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/objects/NSString.h"

namespace kbx {

/// The text of a file name's bytes. Never absent.
///
/// A name is UTF-8 by custom only. A byte that belongs to no valid sequence becomes the lone
/// surrogate U+DC00 + byte, which no valid name has, so that every name has a text and finds its
/// way back. Such a text has no UTF-8 form; lossyUTF8() shows it.
KBX_PLATFORM Ref<NSString> stringWithFileSystemRepresentation(std::string_view bytes);

/// The bytes of a file name's text. Absent when the text is absent, or holds a NUL or a surrogate
/// that stands for no byte: no file has such a name.
KBX_PLATFORM std::optional<std::string> fileSystemRepresentation(NSString* text);

}  // namespace kbx
