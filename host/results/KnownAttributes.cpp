#include "host/results/KnownAttributes.h"

namespace kbx {
namespace {

constexpr std::string_view kString = "string";
constexpr std::string_view kStrings = "array of strings";
constexpr std::string_view kDate = "date";
constexpr std::string_view kNumber = "number";
constexpr std::string_view kBoolean = "boolean";

constexpr KnownAttribute kAttributes[] = {
    {"KBXTextContentIsSynthesized", kBoolean, "the text was made from the HTML"},
    {"com_apple_mail_dateReceived", kDate, "when it arrived"},
    {"com_apple_mail_dateSent", kDate, "when it was sent"},
    {"com_apple_mail_flagged", kBoolean, "whether it is flagged"},
    {"com_apple_mail_priority", kNumber, "1 for the highest to 5 for the lowest"},
    {"com_apple_mail_read", kBoolean, "whether it was read"},
    {"com_apple_mail_repliedTo", kBoolean, "whether it was answered"},
    {"kMDItemAdditionalRecipientEmailAddresses", kStrings, "addresses of Cc"},
    {"kMDItemAttachmentNames", kStrings, "file names of the attachments"},
    {"kMDItemAttachmentTypes", kStrings, "their type identifiers, in the same order"},
    {"kMDItemAuthorEmailAddresses", kStrings, "addresses of From"},
    {"kMDItemAuthors", kStrings, "names of From, or addresses where there are none"},
    {"kMDItemContentCreationDate", kDate, "when it was sent, or else received"},
    {"kMDItemContentModificationDate", kDate, "the same"},
    {"kMDItemContentType", kString, "type identifier of the file"},
    {"kMDItemCreator", kString, "the program that wrote it"},
    {"kMDItemDisplayName", kString, "the subject, unless it is empty"},
    {"kMDItemHTMLContent", kString, "the body as HTML"},
    {"kMDItemHiddenAdditionalRecipientEmailAddresses", kStrings, "addresses of Bcc"},
    {"kMDItemIdentifier", kString, "Message-ID, without its brackets"},
    {"kMDItemIsLikelyJunk", kBoolean, "whether it was marked as junk"},
    {"kMDItemKeywords", kStrings, "Keywords"},
    {"kMDItemKind", kString, "\"Mail Message\""},
    {"kMDItemLanguages", kStrings, "Content-Language"},
    {"kMDItemPrimaryRecipientEmailAddresses", kStrings, "addresses of To"},
    {"kMDItemRecipientEmailAddresses", kStrings, "addresses of To, Cc and Bcc"},
    {"kMDItemRecipients", kStrings, "names of these, or addresses where there are none"},
    {"kMDItemSubject", kString, "Subject"},
    {"kMDItemTextContent", kString, "the body as text"},
    {"org_ferncase_mail_encrypted", kBoolean, "whether the body is encrypted"},
    {"org_ferncase_mail_hasAttachment", kBoolean, "whether anything is attached"},
    {"org_ferncase_mail_inReplyTo", kStrings, "identifiers of In-Reply-To"},
    {"org_ferncase_mail_listID", kString, "List-Id"},
    {"org_ferncase_mail_references", kStrings, "identifiers of References"},
    {"org_ferncase_mail_replyTo", kStrings, "addresses of Reply-To"},
    {"org_ferncase_mail_sender", kStrings, "addresses of Sender"},
    {"org_ferncase_mail_signed", kBoolean, "whether it has a signature, which is not checked"},
    {"org_ferncase_mail_size", kNumber, "bytes of the message"},
};

}  // namespace

std::span<const KnownAttribute> knownAttributes() { return kAttributes; }

}  // namespace kbx
