// DesktopEntry: what a ".desktop" file says of the application that it starts.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/Export.h"

namespace kbx {

/// The name in the first of the languages that has one, else the name of no language.
///
/// text       the file's bytes
/// languages  as userLanguages() gives them
///
/// Absent when the group "[Desktop Entry]" holds no name, or none that is not empty.
KBX_PLATFORM std::optional<std::string> nameInDesktopEntry(std::string_view text,
                                                           std::span<const std::string> languages);

}  // namespace kbx
