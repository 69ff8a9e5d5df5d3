// MediaTypes: what is done with a part, by its type.
#pragma once

#include <string>
#include <string_view>

namespace kbx {

// All take a media type in small letters; an empty one is text/plain.

/// A message that is attached.
bool isMessage(std::string_view type);
/// A part whose text a reader sees as it is: text of most kinds and reports of delivery.
bool isShownAsText(std::string_view type);
/// text/plain itself.
bool isPlainText(std::string_view type);
/// A part that is neither text nor a container, such as an image.
bool isAttachment(std::string_view type);
/// A signature beside what it signs.
bool isSignature(std::string_view type);
/// A part that wraps another in a signature or in encryption.
bool isSignedOrEncrypted(std::string_view type);

/// Whether the smime-type parameter tells of encryption.
bool isEncryptedOnly(std::string_view smimeType);
/// Whether a text is an encrypted block.
bool startsSealed(std::string_view text);
/// What stands behind that block, such as the foot of a mailing list.
std::string_view textBehindSeal(std::string_view text);

/// The uniform type identifier of a part; by its name where the type says nothing, else
/// "public.data".
std::string_view uniformType(std::string_view type, std::string_view name);

/// The charset that an HTML text declares for itself near its start; empty without one.
std::string charsetOfHTML(std::string_view html);

}  // namespace kbx
