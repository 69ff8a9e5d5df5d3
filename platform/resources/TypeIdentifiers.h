// Uniform type identifiers of files, by their names.
#pragma once

#include <string_view>

#include "platform/objects/NSString.h"

namespace kbx {

/// The type of a file of that name, without regard to case: "com.apple.mail.email" for .eml;
/// "public.folder" for a folder and "public.data" where nothing is known. Never absent.
///
/// Names that the table of known endings does not hold are looked up as MIME types (MimeTypes); a
/// MIME type without an identifier of its own gives that of its kind, such as "public.image".
KBX_PLATFORM Ref<NSString> typeIdentifier(std::string_view name, bool isFolder);

/// The identifier of a MIME type; "public.data" where nothing is known, also for "".
KBX_PLATFORM Ref<NSString> typeIdentifierOfMIMEType(std::string_view type);

}  // namespace kbx
