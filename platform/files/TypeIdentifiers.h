// Uniform type identifiers of files, by the ends of their names.
#pragma once

#include <string_view>

#include "platform/objects/NSString.h"

namespace kbx {

/// The type of a file of that name, without regard to case: "com.apple.mail.email" for .eml;
/// "public.folder" for a folder and "public.data" where nothing is known. Never absent.
Ref<NSString> typeIdentifier(std::string_view name, bool isFolder);

}  // namespace kbx
