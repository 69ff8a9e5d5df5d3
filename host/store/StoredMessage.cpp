#include "host/store/StoredMessage.h"

#include <vector>

#include "host/console/FerncaseErrors.h"
#include "host/store/PackedAttributes.h"
#include "host/store/StoreErrors.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNumber.h"
#include "platform/propertylists/NSPropertyListSerialization.h"
#include "platform/text/UTF8.h"

namespace kbx {
namespace {

using Texts = std::vector<std::string>;

std::optional<std::string> textOf(NSObject* value) {
  auto* text = cast<NSString>(value);
  if (!text) return std::nullopt;
  if (const auto kept = text->keptUTF8()) return std::string(*kept);
  return text->lossyUTF8();
}

std::optional<bool> boolOf(NSObject* value) {
  auto* number = cast<NSNumber>(value);
  return number ? std::optional(number->boolValue()) : std::nullopt;
}

std::optional<std::int64_t> integerOf(NSObject* value) {
  auto* number = cast<NSNumber>(value);
  return number ? std::optional(number->integerValue()) : std::nullopt;
}

std::optional<double> secondsOf(NSObject* value) {
  auto* date = cast<NSDate>(value);
  return date ? std::optional(date->timeIntervalSince1970()) : std::nullopt;
}

Texts textsOf(NSObject* value) {
  Texts texts;
  if (auto* array = cast<NSArray>(value)) {
    texts.reserve(array->count());
    for (const auto& element : *array)
      if (auto text = textOf(element)) texts.push_back(std::move(*text));
  } else if (auto text = textOf(value)) {
    texts.push_back(std::move(*text));
  }
  return texts;
}

void add(std::string& list, std::string_view item) {
  if (item.empty()) return;
  if (!list.empty()) list += ", ";
  list += item;
}

std::optional<std::string> joined(const Texts& texts) {
  if (texts.empty()) return std::nullopt;
  std::string list;
  for (const std::string& text : texts) add(list, text);
  return list;
}

/// "Name <address>", or the address where the name is nothing else.
std::string person(const std::string& name, const std::string& address) {
  return name == address ? address : name + " <" + address + ">";
}

/// Names with their addresses. Where they are not as many, nobody knows which belong together, and
/// the names stand before the addresses.
class People {
 public:
  People(Texts names, const Texts& addresses)
      : _names(std::move(names)), _arePaired(_names.size() == addresses.size()) {}

  /// The next of them, whose addresses these are.
  std::optional<std::string> next(const Texts& addresses) {
    if (addresses.empty()) return std::nullopt;
    std::string list;
    for (const std::string& address : addresses)
      add(list, _arePaired && _used < _names.size() ? person(_names[_used++], address) : address);
    return list;
  }

  /// The names that next() does not give.
  std::string unpaired() const { return _arePaired ? std::string() : joined(_names).value_or(""); }

 private:
  const Texts _names;
  const bool _arePaired;
  std::size_t _used = 0;
};

void prepend(std::optional<std::string>& list, const std::string& names) {
  if (names.empty()) return;
  std::string all = names;
  if (list) add(all, *list);
  list = std::move(all);
}

class Reader {
 public:
  explicit Reader(NSDictionary* attributes) : _attributes(attributes) {}

  NSObject* operator[](NSString* name) const { return _attributes->objectForKey(name); }
  Texts texts(NSString* name) const { return textsOf((*this)[name]); }

 private:
  NSDictionary* const _attributes;
};

void setPeople(StoredMessage& message, const Reader& attributes) {
  const Texts from = attributes.texts("kMDItemAuthorEmailAddresses"_ns);
  People authors(attributes.texts("kMDItemAuthors"_ns), from);
  message.sender = authors.next(from);
  prepend(message.sender, authors.unpaired());

  const Texts to = attributes.texts("kMDItemPrimaryRecipientEmailAddresses"_ns);
  const Texts cc = attributes.texts("kMDItemAdditionalRecipientEmailAddresses"_ns);
  const Texts bcc = attributes.texts("kMDItemHiddenAdditionalRecipientEmailAddresses"_ns);
  Texts all = to;
  all.insert(all.end(), cc.begin(), cc.end());
  all.insert(all.end(), bcc.begin(), bcc.end());
  People recipients(attributes.texts("kMDItemRecipients"_ns), all);
  message.recipient = recipients.next(to);
  message.cc = recipients.next(cc);
  message.bcc = recipients.next(bcc);
  prepend(message.recipient, recipients.unpaired());
}

void setState(StoredMessage& message, const Reader& attributes) {
  message.date = secondsOf(attributes["com_apple_mail_dateSent"_ns]);
  if (!message.date) message.date = secondsOf(attributes["kMDItemContentCreationDate"_ns]);
  message.received = secondsOf(attributes["com_apple_mail_dateReceived"_ns]);
  message.isRead = boolOf(attributes["com_apple_mail_read"_ns]);
  message.isFlagged = boolOf(attributes["com_apple_mail_flagged"_ns]);
  message.isReplied = boolOf(attributes["com_apple_mail_repliedTo"_ns]);
  message.isJunk = boolOf(attributes["kMDItemIsLikelyJunk"_ns]);
  message.hasAttachment = boolOf(attributes["org_ferncase_mail_hasAttachment"_ns]);
  message.size = integerOf(attributes["org_ferncase_mail_size"_ns]);
}

Ref<NSError> damagedError() {
  return NSError::errorWithDomain(
      FerncaseErrorDomain(), StoreDamagedError,
      NSDictionary::dictionaryWithPairs(
          {{NSLocalizedDescriptionKey(), "The stored attributes are damaged."_ns}}));
}

NSString* bodyName() { return "kMDItemTextContent"_ns; }

/// Everything but the text of the body, which has a column of its own.
Ref<NSDictionary> withoutBody(NSDictionary* attributes) {
  Ref<NSMutableDictionary> others = NSMutableDictionary::dictionary();
  NSString* const body = bodyName();
  for (const auto& [key, value] : *attributes)
    if (!(body->isEqual(key) && cast<NSString>(value.get()))) others->setObjectForKey(value, key);
  return others;
}

}  // namespace

std::optional<StoredMessage> storedMessage(NSDictionary* attributes, Ref<NSError>* error) {
  Ref<NSDictionary> others = withoutBody(attributes);
  Ref<NSData> list = NSPropertyListSerialization::dataWithPropertyList(
      others, NSPropertyListBinaryFormat_v1_0, 0, error);
  if (!list) return std::nullopt;
  const Reader reader(attributes);
  StoredMessage message;
  message.attributes = packedAttributes(list->view());
  message.subject = textOf(reader["kMDItemSubject"_ns]);
  message.body = textOf(reader[bodyName()]);
  message.attachment = joined(reader.texts("kMDItemAttachmentNames"_ns));
  message.list = textOf(reader["org_ferncase_mail_listID"_ns]);
  message.messageId = textOf(reader["kMDItemIdentifier"_ns]);
  setPeople(message, reader);
  setState(message, reader);
  return message;
}

Ref<NSDictionary> importedAttributes(std::string_view attributes,
                                     std::optional<std::string_view> body, Ref<NSError>* error) {
  const auto unpacked = unpackedAttributes(attributes);
  if (!unpacked) {
    tell(error, damagedError());
    return nullptr;
  }
  Ref<NSObject> list = NSPropertyListSerialization::propertyListWithData(
      NSData::dataWithBytes(*unpacked), NSPropertyListImmutable, nullptr, error);
  auto* others = cast<NSDictionary>(list.get());
  if (!others) return nullptr;
  Ref<NSMutableDictionary> all = others->mutableCopy();
  if (body) all->setObjectForKey(NSString::stringWithLossyUTF8(*body), bodyName());
  return all;
}

std::string indexedFileName(std::string_view path) {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  return std::string(name.substr(0, name.find(":2,")));
}

}  // namespace kbx
