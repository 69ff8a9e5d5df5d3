#include "platform/archives/ArchiveReader.h"

#include <optional>
#include <utility>

#include "platform/archives/ArchiveFormat.h"
#include "platform/archives/ArchiveHead.h"
#include "platform/archives/ArchiveWalk.h"
#include "platform/archives/ArchivedItems.h"
#include "platform/archives/ArchivedURL.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "platform/propertylists/BinaryPropertyListReader.h"

namespace kbx {
namespace {

/// What objects may have beyond the archive's own bytes: many may be made of the same ones.
constexpr std::uint64_t kFreeContent = 16'000'000;
constexpr std::uint64_t kContentPerByte = 64;
constexpr std::size_t kLongestClassName = 256;

using References = ArchiveReferences;
using Item = ArchivedItem;

class Reader final : public ArchiveWalk {
 public:
  ArchiveReading read(std::string_view bytes);

 private:
  using Parts = NSDictionary*;
  /// How an object of a class is begun: false, with a fault, when its parts do not fit.
  struct Form {
    std::string_view name;
    bool (Reader::*begin)(Item& item, Parts parts);
  };
  static const Form kForms[];

  Opened open(std::size_t place) override;
  bool close(std::size_t place) override;

  bool fail(std::string what) { return _fault.fail(std::move(what)); }
  bool spend(std::size_t bytes);
  bool failPart(NSString* name);
  bool takeReferences(Parts parts, NSString* name, References& references);
  const Form* formOf(Parts parts);

  bool beginText(Item& item, Parts parts);
  bool beginDate(Item& item, Parts parts);
  bool beginData(Item& item, Parts parts);
  bool beginMutableData(Item& item, Parts parts);
  bool beginArray(Item& item, Parts parts);
  bool beginMutableArray(Item& item, Parts parts);
  bool beginDictionary(Item& item, Parts parts);
  bool beginMutableDictionary(Item& item, Parts parts);
  bool beginURL(Item& item, Parts parts);
  bool beginUserInfo(Item& item, Parts parts, Ref<NSDictionary>& userInfo);
  bool beginError(Item& item, Parts parts);
  bool beginNull(Item& item, Parts parts);
  bool beginClass(Item& item, Parts parts);

  bool takeEntries(Item& item, Parts parts);
  bool finishURL(Item& item, Parts parts);
  bool payForKeys(const Item& item);
  bool checkUserInfos();

  ArchiveFault _fault;
  ArchiveHead _head;
  ArchivedItems _items{_fault};
  References _userInfos;
  std::uint64_t _content = 0;  // bytes that may still be made
};

const Reader::Form Reader::kForms[] = {
    {"NSString", &Reader::beginText},
    {"NSMutableString", &Reader::beginText},
    {"NSDate", &Reader::beginDate},
    {"NSData", &Reader::beginData},
    {"NSMutableData", &Reader::beginMutableData},
    {"NSArray", &Reader::beginArray},
    {"NSMutableArray", &Reader::beginMutableArray},
    {"NSDictionary", &Reader::beginDictionary},
    {"NSMutableDictionary", &Reader::beginMutableDictionary},
    {"NSURL", &Reader::beginURL},
    {"NSError", &Reader::beginError},
    {"NSNull", &Reader::beginNull},
    {"NSClass", &Reader::beginClass},
};

bool Reader::spend(std::size_t bytes) {
  if (bytes > _content) return fail("shared parts make too large objects");
  _content -= bytes;
  return true;
}

bool Reader::failPart(NSString* name) {
  return fail("an object whose " + name->lossyUTF8() + " is missing or of another kind");
}

// ---- Parts of an object ------------------------------------------------------------------

bool Reader::takeReferences(Parts parts, NSString* name, References& references) {
  auto* list = cast<NSArray>(parts->objectForKey(name));
  if (!list) return failPart(name);
  references.reserve(list->count());
  for (const auto& element : *list) {
    const auto place = _head.placeOf(element);
    if (!place || _head.isAbsent(*place)) return fail("a collection with an absent element");
    references.push_back(*place);
  }
  return true;
}

const Reader::Form* Reader::formOf(Parts parts) {
  auto* described = cast<NSDictionary>(_head.part(parts, archive::objectClass()));
  auto* name = described ? cast<NSString>(described->objectForKey(archive::className())) : nullptr;
  if (!name) {
    failPart(archive::objectClass());
    return nullptr;
  }
  const bool isLong = name->length() > kLongestClassName;
  const std::string text = isLong ? "a long name" : name->lossyUTF8();
  for (const Form& form : kForms)
    if (form.name == text) return &form;
  fail("an object of the class “" + text + "”, which cannot be unarchived");
  return nullptr;
}

// ---- What an object begins with ----------------------------------------------------------

bool Reader::beginText(Item& item, Parts parts) {
  // A plain text here, the very text of the absent object too.
  item.object = cast<NSString>(_head.part(parts, archive::text()));
  auto* bytes = item.object ? nullptr : cast<NSData>(_head.part(parts, archive::textBytes()));
  if (bytes && !spend(bytes->length())) return false;
  if (bytes) item.object = NSString::stringWithUTF8(bytes->view());
  return item.object || failPart(archive::text());
}

bool Reader::beginDate(Item& item, Parts parts) {
  auto* seconds = cast<NSNumber>(parts->objectForKey(archive::seconds()));
  if (!seconds) return failPart(archive::seconds());
  item.object = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds->doubleValue());
  return true;
}

bool Reader::beginData(Item& item, Parts parts) {
  item.object = cast<NSData>(_head.part(parts, archive::bytes()));
  return item.object || failPart(archive::bytes());
}

bool Reader::beginMutableData(Item& item, Parts parts) {
  if (!beginData(item, parts)) return false;
  if (!spend(static_cast<NSData*>(item.object.get())->length())) return false;
  item.object = static_cast<NSData*>(item.object.get())->mutableCopy();
  return true;
}

bool Reader::beginArray(Item& item, Parts parts) {
  item.object = makeLateArray();
  return takeReferences(parts, archive::elements(), item.first);
}

bool Reader::beginMutableArray(Item& item, Parts parts) {
  item.object = NSMutableArray::array();
  return takeReferences(parts, archive::elements(), item.first);
}

bool Reader::takeEntries(Item& item, Parts parts) {
  if (!takeReferences(parts, archive::keys(), item.first)) return false;
  if (!takeReferences(parts, archive::elements(), item.second)) return false;
  return item.first.size() == item.second.size() || fail("a dictionary with a key without a value");
}

bool Reader::beginDictionary(Item& item, Parts parts) {
  // An error that holds it may have begun it.
  if (!item.object) item.object = makeLateDictionary();
  return takeEntries(item, parts);
}

bool Reader::beginMutableDictionary(Item& item, Parts parts) {
  item.object = NSMutableDictionary::dictionary();
  return takeEntries(item, parts);
}

bool Reader::beginURL(Item& item, Parts parts) {
  const auto base = _head.placeOf(parts->objectForKey(archive::base()));
  if (base && !_head.isAbsent(*base)) item.first.push_back(*base);
  return true;
}

bool Reader::beginNull(Item& item, Parts) {
  item.object = NSNull::null();
  return true;
}

bool Reader::beginClass(Item& item, Parts parts) {
  auto* name = cast<NSString>(_head.part(parts, archive::nameOfClass()));
  const bool isName = name && name->length() <= kLongestClassName;
  NSClass* found = isName ? NSClass::named(name->lossyUTF8()) : nullptr;
  // As in writing; an archive shall not name just any class.
  if (!found || !found->adoptsProtocol("NSCoding")) return failPart(archive::nameOfClass());
  item.object = found;
  return true;
}

bool Reader::beginUserInfo(Item& item, Parts parts, Ref<NSDictionary>& userInfo) {
  const auto place = _head.placeOf(parts->objectForKey(archive::errorUserInfo()));
  if (!place || _head.isAbsent(*place)) return true;
  auto* heldParts = cast<NSDictionary>(_head.described(*place));
  const Form* form = heldParts ? formOf(heldParts) : nullptr;
  if (!form || form->begin != &Reader::beginDictionary) return failPart(archive::errorUserInfo());
  Item& held = _items[*place];
  if (!held.object) held.object = makeLateDictionary();
  userInfo = static_cast<NSDictionary*>(held.object.get());
  item.first.push_back(*place);
  _userInfos.push_back(*place);
  return true;
}

/// An error is made with a dictionary that is filled when its turn comes, because what is in there
/// may hold the error.
bool Reader::beginError(Item& item, Parts parts) {
  auto* domain = cast<NSString>(_head.part(parts, archive::errorDomain()));
  if (!domain) return failPart(archive::errorDomain());
  auto* code = cast<NSNumber>(_head.part(parts, archive::errorCode()));
  if (!code) return failPart(archive::errorCode());
  Ref<NSDictionary> userInfo;
  if (!beginUserInfo(item, parts, userInfo)) return false;
  item.object = NSError::errorWithDomain(domain, code->integerValue(), userInfo);
  return true;
}

// ---- What it ends with -------------------------------------------------------------------

/// A key is hashed once more by each dictionary that holds it.
bool Reader::payForKeys(const Item& item) {
  for (std::size_t place : item.first) {
    NSObject* key = _items.made(place);
    auto* text = cast<NSString>(key);
    auto* bytes = cast<NSData>(key);
    if (!spend(text ? text->length() : bytes ? bytes->length() : 0)) return false;
  }
  return true;
}

bool Reader::finishURL(Item& item, Parts parts) {
  auto* text = cast<NSString>(_head.part(parts, archive::relative()));
  if (!text) return failPart(archive::relative());
  auto* base = item.first.empty() ? nullptr : cast<NSURL>(_items.made(item.first.front()));
  if (!base && !item.first.empty()) return failPart(archive::base());
  if (!spend(text->length() + (base ? base->fileSystemRepresentation().size() : 0))) return false;
  item.object = fileURLFromText(text, base);
  return item.object || fail("a location that is no file’s");
}

// ---- The walk ----------------------------------------------------------------------------

Reader::Opened Reader::open(std::size_t place) {
  NSObject* raw = _head.described(place);
  Item& item = _items[place];
  auto* parts = cast<NSDictionary>(raw);
  if (!parts) {
    const bool isLeaf =
        cast<NSString>(raw) || cast<NSNumber>(raw) || cast<NSData>(raw) || cast<NSDate>(raw);
    if (isLeaf) item.object = raw;
    return {.isLeaf = true, .hasFailed = !isLeaf && !fail("an object of an unknown kind")};
  }
  const Form* form = formOf(parts);
  if (!form || !(this->*form->begin)(item, parts)) return {.hasFailed = true};
  std::vector<std::size_t> held = item.first;
  held.insert(held.end(), item.second.begin(), item.second.end());
  return {.held = std::move(held)};
}

bool Reader::close(std::size_t place) {
  Item& item = _items[place];
  auto* parts = static_cast<NSDictionary*>(_head.described(place));
  if (!item.object) return finishURL(item, parts);
  return (!cast<NSDictionary>(item.object) || payForKeys(item)) && _items.fill(item);
}

bool Reader::checkUserInfos() {
  for (std::size_t place : _userInfos)
    for (const auto& entry : *static_cast<NSDictionary*>(_items.made(place)))
      if (!cast<NSString>(entry.key)) return fail("an error with a key that is no text");
  return true;
}

ArchiveReading Reader::read(std::string_view bytes) {
  _content = kFreeContent + kContentPerByte * bytes.size();
  auto [archive, fault] = archiveFromBinary(bytes);
  if (!archive) return {.fault = std::move(fault)};
  if (!_head.read(archive, _fault)) return {.fault = _fault.text()};
  if (_head.isAbsent(_head.root())) return {.hasRoot = true};
  _items.resize(_head.count());
  const Outcome outcome = walk(_head.root());
  if (outcome == Outcome::TooDeep)
    fail("more than " + std::to_string(kDeepestArchive) + " levels of objects");
  if (outcome != Outcome::Done || !checkUserInfos() || !_items.checkCircles()) {
    _items.abandon();
    return {.fault = _fault.text()};
  }
  return {.root = _items.made(_head.root()), .hasRoot = true};
}

}  // namespace

ArchiveReading readArchive(std::string_view bytes) { return Reader().read(bytes); }

}  // namespace kbx
