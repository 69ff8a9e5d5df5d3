// SignedContent: what lies inside a signed S/MIME body.
#pragma once

#include <string>

namespace kbx {

/// The part, header and body, that a CMS structure of signed data wraps; empty when the bytes are
/// no such structure. The signature is not checked: what a reader is shown does not depend on it.
///
/// isEncrypted  set when the structure turns out to be enveloped data; not changed otherwise
std::string signedContent(std::string bytes, bool* isEncrypted);

}  // namespace kbx
