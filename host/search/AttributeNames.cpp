#include "host/search/AttributeNames.h"

#include <algorithm>
#include <array>

#include "host/search/Spelling.h"

namespace kbx {
namespace {

constexpr std::string_view kNames[] = {
    "kMDItemAdditionalRecipientEmailAddresses",
    "kMDItemAttachmentNames",
    "kMDItemAttachmentTypes",
    "kMDItemAuthorEmailAddresses",
    "kMDItemAuthors",
    "kMDItemContentCreationDate",
    "kMDItemContentModificationDate",
    "kMDItemContentType",
    "kMDItemCreator",
    "kMDItemDisplayName",
    "kMDItemFSName",
    "kMDItemFSSize",
    "kMDItemHTMLContent",
    "kMDItemHiddenAdditionalRecipientEmailAddresses",
    "kMDItemIdentifier",
    "kMDItemIsLikelyJunk",
    "kMDItemKeywords",
    "kMDItemKind",
    "kMDItemLanguages",
    "kMDItemPath",
    "kMDItemPrimaryRecipientEmailAddresses",
    "kMDItemRecipientEmailAddresses",
    "kMDItemRecipients",
    "kMDItemSubject",
    "kMDItemTextContent",
    "com_apple_mail_dateReceived",
    "com_apple_mail_dateSent",
    "com_apple_mail_flagged",
    "com_apple_mail_priority",
    "com_apple_mail_read",
    "com_apple_mail_repliedTo",
};

constexpr std::array<std::string_view, 2> kPrefixes{"kMDItem", "com_apple_mail_"};

}  // namespace

std::string_view nearestAttribute(std::string_view name) {
  if (std::ranges::find(kNames, name) != std::end(kNames)) return {};
  const auto begins = [&](std::string_view prefix) {
    return nearestWord(name.substr(0, prefix.size()), {&prefix, 1}) == prefix;
  };
  if (std::ranges::none_of(kPrefixes, begins)) return {};
  return nearestWord(name, kNames);
}

}  // namespace kbx
