// MaildirState: what a Maildir says of a message beside its content.
#pragma once

#include <string>

#include "platform/objects/NSDictionary.h"

namespace kbx {

/// Whether the message is read, flagged and answered, under the names that the mail importer has
/// for it, from the folder and the name of the file (":2,FRS"); absent where that says nothing. A
/// message in "new" is unread.
///
/// Files that say so themselves (.emlx) have none.
Ref<NSDictionary> maildirState(const std::string& path);

}  // namespace kbx
