#include "mail/Attributes.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mail/ASCII.h"
#include "mail/Addresses.h"
#include "mail/Dates.h"
#include "mail/HeaderFields.h"
#include "mail/HeaderText.h"
#include "mail/MediaTypes.h"
#include "mail/MessageState.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNumber.h"
#include "platform/text/UTF8.h"

namespace kbx {
namespace {

/// Keeps the bytes of ASCII text, which most is, and of long text.
Ref<NSString> stringOf(std::string text) {
  if (asciiPrefixLength(text) == text.size()) return NSString::stringByTakingUTF8(std::move(text));
  return NSString::stringWithLossyUTF8(text);
}

/// The text between angle brackets, or all of it.
std::string_view withoutBrackets(std::string_view text) {
  const std::size_t start = text.find('<');
  const std::size_t end = start == text.npos ? start : text.find('>', start);
  return trimmed(end == text.npos ? text : text.substr(start + 1, end - start - 1));
}

/// The same objects are shared by all attributes that name them.
struct People {
  NSArray::Elements names;      // with the address where there is none
  NSArray::Elements addresses;  // where there is one
};

class AttributeWriter {
 public:
  AttributeWriter(NSMutableDictionary* attributes, const HeaderFields& header, TextDecoder& decoder)
      : _attributes(attributes), _header(header), _decoder(decoder) {}

  void set(NSString* name, NSObject* value) {
    if (value) _attributes->setObjectForKey(value, name);
  }
  void setText(NSString* name, std::string text) {
    if (!text.empty()) set(name, stringOf(std::move(text)));
  }
  void setTexts(NSString* name, std::vector<std::string> texts) {
    NSArray::Elements elements;
    elements.reserve(texts.size());
    for (std::string& text : texts) elements.push_back(stringOf(std::move(text)));
    setElements(name, std::move(elements));
  }
  void setElements(NSString* name, NSArray::Elements elements) {
    if (!elements.empty()) set(name, NSArray::arrayWithElements(std::move(elements)));
  }
  void setDate(NSString* name, std::optional<double> seconds) {
    if (seconds) set(name, NSDate::dateWithTimeIntervalSince1970(*seconds));
  }
  void setBool(NSString* name, std::optional<bool> value) {
    if (value) set(name, NSNumber::numberWithBool(*value));
  }
  void setNumber(NSString* name, std::optional<std::int64_t> value) {
    if (value) set(name, NSNumber::numberWithInteger(*value));
  }

  void setSubject() {
    const std::string_view raw = _header[HeaderField::Subject];
    if (!raw.data()) return;
    Ref<NSString> subject = stringOf(headerText(raw, _decoder));
    set("kMDItemSubject"_ns, subject);
    if (subject->length() > 0) set("kMDItemDisplayName"_ns, subject);
  }

  void setPeople();
  void setDates(NSDictionary* properties);
  void setHeaderWords();
  void setState(NSDictionary* properties);
  void setContent(MessageContent& content);
  void setOwn(const MessageContent& content, std::uint64_t size);

 private:
  std::string text(HeaderField field) { return headerText(_header[field], _decoder); }
  People people(HeaderField field);
  std::vector<std::string> list(HeaderField field);

  NSMutableDictionary* const _attributes;
  const HeaderFields& _header;
  TextDecoder& _decoder;
};

People AttributeWriter::people(HeaderField field) {
  People people;
  for (Mailbox& one : mailboxes(_header[field], _decoder)) {
    Ref<NSString> address = stringOf(std::move(one.address));
    people.names.push_back(one.name.empty() ? address : stringOf(std::move(one.name)));
    if (address->length() > 0) people.addresses.push_back(std::move(address));
  }
  return people;
}

void AttributeWriter::setPeople() {
  People authors = people(HeaderField::From);
  setElements("kMDItemAuthors"_ns, std::move(authors.names));
  setElements("kMDItemAuthorEmailAddresses"_ns, std::move(authors.addresses));
  const std::pair<HeaderField, NSString*> kinds[] = {
      {HeaderField::To, "kMDItemPrimaryRecipientEmailAddresses"_ns},
      {HeaderField::Cc, "kMDItemAdditionalRecipientEmailAddresses"_ns},
      {HeaderField::Bcc, "kMDItemHiddenAdditionalRecipientEmailAddresses"_ns}};
  People all;
  for (const auto& [field, attribute] : kinds) {
    People some = people(field);
    all.names.insert(all.names.end(), some.names.begin(), some.names.end());
    all.addresses.insert(all.addresses.end(), some.addresses.begin(), some.addresses.end());
    setElements(attribute, std::move(some.addresses));
  }
  setElements("kMDItemRecipients"_ns, std::move(all.names));
  setElements("kMDItemRecipientEmailAddresses"_ns, std::move(all.addresses));
}

/// A date in a mail client's list: a date, or seconds since 1970.
std::optional<double> listedDate(NSDictionary* properties, NSString* key) {
  NSObject* value = properties->objectForKey(key);
  if (auto* date = cast<NSDate>(value)) return date->timeIntervalSince1970();
  if (auto* number = cast<NSNumber>(value)) return number->doubleValue();
  return std::nullopt;
}

void AttributeWriter::setDates(NSDictionary* properties) {
  std::optional<double> sent = dateOf(_header[HeaderField::Date]);
  if (!sent) sent = listedDate(properties, "date-sent"_ns);
  std::optional<double> received = listedDate(properties, "date-received"_ns);
  for (std::string_view one : _header.received())
    if (!received) received = receivedDateOf(one);
  if (!received) received = sent;
  setDate("com_apple_mail_dateSent"_ns, sent);
  setDate("com_apple_mail_dateReceived"_ns, received);
  // A message does not change after it was written.
  setDate("kMDItemContentCreationDate"_ns, sent ? sent : received);
  setDate("kMDItemContentModificationDate"_ns, sent ? sent : received);
}

/// The words of a value that commas separate.
std::vector<std::string> AttributeWriter::list(HeaderField field) {
  std::vector<std::string> words;
  const std::string all = text(field);
  for (std::string_view rest = all; !rest.empty();) {
    const std::string_view word = rest.substr(0, rest.find(','));
    rest.remove_prefix(std::min(word.size() + 1, rest.size()));
    if (!trimmed(word).empty()) words.emplace_back(trimmed(word));
  }
  return words;
}

void AttributeWriter::setHeaderWords() {
  setText("kMDItemIdentifier"_ns, std::string(withoutBrackets(text(HeaderField::MessageID))));
  setTexts("kMDItemKeywords"_ns, list(HeaderField::Keywords));
  setTexts("kMDItemLanguages"_ns, list(HeaderField::ContentLanguage));
  const std::string mailer = text(HeaderField::Mailer);
  setText("kMDItemCreator"_ns, mailer.empty() ? text(HeaderField::UserAgent) : mailer);
}

void AttributeWriter::setState(NSDictionary* properties) {
  const MessageState state = messageState(properties, _header);
  setBool("com_apple_mail_read"_ns, state.isRead);
  setBool("com_apple_mail_repliedTo"_ns, state.isRepliedTo);
  setBool("com_apple_mail_flagged"_ns, state.isFlagged);
  setNumber("com_apple_mail_priority"_ns, state.priority);
  setBool("kMDItemIsLikelyJunk"_ns, state.isLikelyJunk);
}

void AttributeWriter::setContent(MessageContent& content) {
  std::vector<std::string> names, types;
  for (Attachment& part : content.namedParts) {
    types.emplace_back(uniformType(part.type, part.name));
    names.push_back(std::move(part.name));
  }
  setTexts("kMDItemAttachmentNames"_ns, std::move(names));
  setTexts("kMDItemAttachmentTypes"_ns, std::move(types));
  BodyText text = content.sections.take();
  setText("kMDItemTextContent"_ns, std::move(text.plain));
  setText("kMDItemHTMLContent"_ns, std::move(text.html));
}

/// The identifiers in a value: "<a@b> <c@d>".
std::vector<std::string> identifiers(std::string_view text) {
  std::vector<std::string> found;
  for (std::size_t at = text.find('<'); at < text.size(); at = text.find('<', at)) {
    const std::size_t end = text.find_first_of("<>", at + 1);
    if (end == text.npos) break;
    const std::string_view inner = trimmed(text.substr(at + 1, end - at - 1));
    if (text[end] == '>' && !inner.empty()) found.emplace_back(inner);
    at = end;
  }
  return found;
}

void AttributeWriter::setOwn(const MessageContent& content, std::uint64_t size) {
  setTexts("org_ferncase_mail_inReplyTo"_ns, identifiers(text(HeaderField::InReplyTo)));
  setTexts("org_ferncase_mail_references"_ns, identifiers(text(HeaderField::References)));
  setText("org_ferncase_mail_listID"_ns, text(HeaderField::ListID));
  setElements("org_ferncase_mail_replyTo"_ns, people(HeaderField::ReplyTo).addresses);
  setElements("org_ferncase_mail_sender"_ns, people(HeaderField::Sender).addresses);
  setNumber("org_ferncase_mail_size"_ns, static_cast<std::int64_t>(size));
  setBool("org_ferncase_mail_hasAttachment"_ns, content.hasAttachment);
  setBool("org_ferncase_mail_signed"_ns, content.isSigned);
  setBool("org_ferncase_mail_encrypted"_ns, content.isEncrypted);
}

}  // namespace

void setAttributes(NSMutableDictionary* attributes, MessageContent content,
                   NSDictionary* properties, std::uint64_t size, NSString* contentType,
                   TextDecoder& decoder) {
  const HeaderFields header(content.header);
  AttributeWriter writer(attributes, header, decoder);
  writer.setSubject();
  writer.setPeople();
  writer.setDates(properties);
  writer.setHeaderWords();
  writer.setState(properties);
  writer.set("kMDItemKind"_ns, "Mail Message"_ns);
  writer.set("kMDItemContentType"_ns, contentType ? contentType : "com.apple.mail.emlx"_ns);
  writer.setOwn(content, size);
  writer.setContent(content);
}

}  // namespace kbx
