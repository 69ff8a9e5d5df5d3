// MessageCatalog: translations in the form in which programs of Unix keep them (".mo").
#pragma once

#include <optional>
#include <string_view>

#include "platform/Export.h"

namespace kbx {

/// The translation of a message, a part of `catalog`.
///
/// catalog  the file's bytes, in either byte order; every offset in it is checked
///
/// Absent when the message is not there, is not translated, or the bytes are no catalog.
KBX_PLATFORM std::optional<std::string_view> translationInCatalog(std::string_view catalog,
                                                                  std::string_view message);

}  // namespace kbx
