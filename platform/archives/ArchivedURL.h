// ArchivedURL: file locations from the texts that archives hold.
#pragma once

#include "platform/files/NSURL.h"

namespace kbx {

/// The location of an absolute text such as "file:///tmp/a%20b/", or of a relative one below a
/// base.
///
/// base  a location, or absent; its folder is where a relative text begins, as in a document
///
/// Absent for other schemes and hosts, for malformed escapes, for queries and fragments, and for a
/// relative text without a base.
KBX_PLATFORM Ref<NSURL> fileURLFromText(NSString* text, NSURL* base);

}  // namespace kbx
