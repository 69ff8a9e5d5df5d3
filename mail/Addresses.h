// Addresses: the mailboxes of an address field.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "mail/TextDecoder.h"

namespace kbx {

/// In UTF-8. Either may be empty, not both.
struct Mailbox {
  std::string name;
  std::string address;
};

/// The mailboxes of a raw value in their order, those of groups among them; in time in proportion
/// to the value's length.
///
/// The name is the phrase before the address, or the comment behind it. Text that is no address is
/// one all the same, so that nothing is lost.
std::vector<Mailbox> mailboxes(std::string_view raw, TextDecoder& decoder);

}  // namespace kbx
