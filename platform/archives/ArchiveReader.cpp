#include "platform/archives/ArchiveReader.h"

#include <iterator>
#include <optional>
#include <utility>

#include "platform/archives/ArchiveFormat.h"
#include "platform/archives/ArchiveWalk.h"
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
#include "platform/propertylists/NSKeyedArchiverUID.h"

namespace kbx {
namespace {

/// An immutable array that gets its elements late, because they may hold it.
class LateArray final : public NSArray {
 public:
  LateArray() : NSArray({}) {}
  void fill(Elements elements) { std::swap(_elements, elements); }
};

/// The same for a dictionary.
class LateDictionary final : public NSDictionary {
 public:
  void add(NSObject* key, NSObject* value) { set(key, value); }
  void clear() {
    const auto entries = std::exchange(_entries, {});
    const auto none = NSDictionary::dictionary();
    assign(*none);
  }
};

/// What objects may have beyond the archive's own bytes: many may be made of the same ones.
constexpr std::uint64_t kFreeContent = 16'000'000;
constexpr std::uint64_t kContentPerByte = 64;
constexpr std::size_t kLongestClassName = 256;

using References = std::vector<std::size_t>;

/// An object of the archive: what is known of it while it is made of its parts.
struct Item {
  Ref<NSObject> object{};  // there before its parts are, except for locations
  References first{};      // elements; the keys of a dictionary; the base of a location
  References second{};     // the values of a dictionary
};

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

  bool fail(std::string what);
  bool spend(std::size_t bytes);
  bool failPart(NSString* name);
  bool readHead(NSObject* archive);
  std::optional<std::size_t> placeOf(NSObject* reference) const;
  NSObject* rawPart(Parts parts, NSString* name) const;
  bool takeReferences(Parts parts, NSString* name, References& references);
  const Form* formOf(Parts parts);
  NSObject* made(std::size_t place) const { return _items[place].object; }
  bool isAbsent(std::size_t place) const;

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
  bool fillArray(Item& item);
  bool fillDictionary(Item& item);
  bool finishURL(Item& item, Parts parts);
  bool requireKey(NSObject* key);
  bool checkUserInfos();
  bool isFixed(std::size_t place) const;
  template <class Visit>
  void forEachFixedHeldBy(std::size_t place, Visit visit) const;
  bool checkCircles();
  void abandon();

  Ref<NSArray> _objects;
  std::size_t _root = 0;
  std::vector<Item> _items;
  References _userInfos;
  std::uint64_t _content = 0;  // bytes that may still be made
  std::string _fault;
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

bool Reader::fail(std::string what) {
  if (_fault.empty()) _fault = std::move(what);
  return false;
}

bool Reader::spend(std::size_t bytes) {
  if (bytes > _content) return fail("shared parts make too large objects");
  _content -= bytes;
  return true;
}

bool Reader::failPart(NSString* name) {
  return fail("an object whose " + name->lossyUTF8() + " is missing or of another kind");
}

// ---- The head ----------------------------------------------------------------------------

/// The place that a reference names; absent when it is none, or names no object.
std::optional<std::size_t> Reader::placeOf(NSObject* reference) const {
  auto* identifier = cast<NSKeyedArchiverUID>(reference);
  if (!identifier || identifier->value() >= _objects->count()) return std::nullopt;
  return static_cast<std::size_t>(identifier->value());
}

bool Reader::readHead(NSObject* archive) {
  auto* head = cast<NSDictionary>(archive);
  if (!head || !isEqual(head->objectForKey(archive::archiver()), archive::archiverName()))
    return fail("no archive of this archiver");
  auto* version = cast<NSNumber>(head->objectForKey(archive::version()));
  if (!version || version->integerValue() != archive::kVersion)
    return fail("an archive of another version");
  _objects = cast<NSArray>(head->objectForKey(archive::objects()));
  auto* top = cast<NSDictionary>(head->objectForKey(archive::top()));
  if (!_objects || !top) return fail("no objects");
  NSObject* root = top->objectForKey(archive::root());
  if (!root) return false;
  const auto place = placeOf(root);
  if (!place) return fail("a root that is no object");
  _root = *place;
  return true;
}

// ---- Parts of an object ------------------------------------------------------------------

bool Reader::isAbsent(std::size_t place) const {
  return place == 0 || isEqual(_objects->objectAtIndex(place), archive::null());
}

/// A part as it stands there, or what it refers to as that stands in the list.
NSObject* Reader::rawPart(Parts parts, NSString* name) const {
  NSObject* part = parts->objectForKey(name);
  if (const auto place = placeOf(part))
    return isAbsent(*place) ? nullptr : _objects->objectAtIndex(*place);
  return part;
}

bool Reader::takeReferences(Parts parts, NSString* name, References& references) {
  auto* list = cast<NSArray>(parts->objectForKey(name));
  if (!list) return failPart(name);
  references.reserve(list->count());
  for (const auto& element : *list) {
    const auto place = placeOf(element);
    if (!place || isAbsent(*place)) return fail("a collection with an absent element");
    references.push_back(*place);
  }
  return true;
}

const Reader::Form* Reader::formOf(Parts parts) {
  auto* described = cast<NSDictionary>(rawPart(parts, archive::objectClass()));
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
  NSObject* text = parts->objectForKey(archive::text());
  if (cast<NSKeyedArchiverUID>(text)) text = rawPart(parts, archive::text());
  item.object = cast<NSString>(text);
  auto* bytes = item.object ? nullptr : cast<NSData>(rawPart(parts, archive::textBytes()));
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
  item.object = cast<NSData>(rawPart(parts, archive::bytes()));
  return item.object || failPart(archive::bytes());
}

bool Reader::beginMutableData(Item& item, Parts parts) {
  if (!beginData(item, parts)) return false;
  if (!spend(static_cast<NSData*>(item.object.get())->length())) return false;
  item.object = static_cast<NSData*>(item.object.get())->mutableCopy();
  return true;
}

bool Reader::beginArray(Item& item, Parts parts) {
  item.object = Ref<NSArray>::adopt(new LateArray);
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
  if (!item.object) item.object = Ref<NSDictionary>::adopt(new LateDictionary);
  return takeEntries(item, parts);
}

bool Reader::beginMutableDictionary(Item& item, Parts parts) {
  item.object = NSMutableDictionary::dictionary();
  return takeEntries(item, parts);
}

bool Reader::beginURL(Item& item, Parts parts) {
  const auto base = placeOf(parts->objectForKey(archive::base()));
  if (base && !isAbsent(*base)) item.first.push_back(*base);
  return true;
}

bool Reader::beginNull(Item& item, Parts) {
  item.object = NSNull::null();
  return true;
}

bool Reader::beginClass(Item& item, Parts parts) {
  auto* name = cast<NSString>(rawPart(parts, archive::nameOfClass()));
  const bool isName = name && name->length() <= kLongestClassName;
  NSClass* found = isName ? NSClass::named(name->lossyUTF8()) : nullptr;
  // As in writing; an archive shall not name just any class.
  if (!found || !found->adoptsProtocol("NSCoding")) return failPart(archive::nameOfClass());
  item.object = found;
  return true;
}

bool Reader::beginUserInfo(Item& item, Parts parts, Ref<NSDictionary>& userInfo) {
  const auto place = placeOf(parts->objectForKey(archive::errorUserInfo()));
  if (!place || isAbsent(*place)) return true;
  auto* heldParts = cast<NSDictionary>(_objects->objectAtIndex(*place));
  const Form* form = heldParts ? formOf(heldParts) : nullptr;
  if (!form || form->begin != &Reader::beginDictionary) return failPart(archive::errorUserInfo());
  Item& held = _items[*place];
  if (!held.object) held.object = Ref<NSDictionary>::adopt(new LateDictionary);
  userInfo = static_cast<NSDictionary*>(held.object.get());
  item.first.push_back(*place);
  _userInfos.push_back(*place);
  return true;
}

/// An error is made with a dictionary that is filled when its turn comes, because what is in there
/// may hold the error.
bool Reader::beginError(Item& item, Parts parts) {
  auto* domain = cast<NSString>(rawPart(parts, archive::errorDomain()));
  if (!domain) return failPart(archive::errorDomain());
  auto* code = cast<NSNumber>(rawPart(parts, archive::errorCode()));
  if (!code) return failPart(archive::errorCode());
  Ref<NSDictionary> userInfo;
  if (!beginUserInfo(item, parts, userInfo)) return false;
  item.object = NSError::errorWithDomain(domain, code->integerValue(), userInfo);
  return true;
}

// ---- What it ends with -------------------------------------------------------------------

bool Reader::fillArray(Item& item) {
  NSArray::Elements elements;
  elements.reserve(item.first.size());
  for (std::size_t place : item.first) {
    if (!made(place)) return fail("a location that is part of itself");
    elements.emplace_back(made(place));
  }
  if (auto* array = cast<NSMutableArray>(item.object))
    array->addObjectsFromArray(NSArray::arrayWithElements(std::move(elements)));
  else
    static_cast<LateArray*>(item.object.get())->fill(std::move(elements));
  return true;
}

/// A key stays as it is and is found quickly, whoever wrote the archive.
bool Reader::requireKey(NSObject* key) {
  for (NSClass* holder :
       {NSArray::classObject(), NSDictionary::classObject(), NSError::classObject()})
    if (key->isKindOfClass(holder))
      return fail("a dictionary with a collection or an error as a key");
  return !key->isClassObject() || fail("a dictionary with a class as a key");
}

bool Reader::fillDictionary(Item& item) {
  auto* mutableOne = cast<NSMutableDictionary>(item.object);
  for (std::size_t i = 0; i < item.first.size(); ++i) {
    NSObject *key = made(item.first[i]), *value = made(item.second[i]);
    if (!key || !value) return fail("a location that is part of itself");
    if (!requireKey(key)) return false;
    if (mutableOne)
      mutableOne->setObjectForKey(value, key);
    else
      static_cast<LateDictionary*>(item.object.get())->add(key, value);
  }
  return true;
}

bool Reader::finishURL(Item& item, Parts parts) {
  auto* text = cast<NSString>(rawPart(parts, archive::relative()));
  if (!text) return failPart(archive::relative());
  auto* base = item.first.empty() ? nullptr : cast<NSURL>(made(item.first.front()));
  if (!base && !item.first.empty()) return failPart(archive::base());
  if (!spend(text->length() + (base ? base->fileSystemRepresentation().size() : 0))) return false;
  item.object = fileURLFromText(text, base);
  return item.object || fail("a location that is no file’s");
}

// ---- The walk ----------------------------------------------------------------------------

Reader::Opened Reader::open(std::size_t place) {
  NSObject* raw = _objects->objectAtIndex(place);
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
  auto* parts = static_cast<NSDictionary*>(_objects->objectAtIndex(place));
  if (!item.object) return finishURL(item, parts);
  if (cast<NSArray>(item.object)) return fillArray(item);
  return !cast<NSDictionary>(item.object) || fillDictionary(item);
}

bool Reader::checkUserInfos() {
  for (std::size_t place : _userInfos)
    for (const auto& entry : *static_cast<NSDictionary*>(made(place)))
      if (!cast<NSString>(entry.key)) return fail("an error with a key that is no text");
  return true;
}

/// Whether an object holds others and can never be made to let them go.
bool Reader::isFixed(std::size_t place) const {
  NSObject* object = made(place);
  return (cast<NSArray>(object) && !cast<NSMutableArray>(object)) ||
         (cast<NSDictionary>(object) && !cast<NSMutableDictionary>(object)) ||
         cast<NSError>(object);
}

template <class Visit>
void Reader::forEachFixedHeldBy(std::size_t place, Visit visit) const {
  for (const References* held : {&_items[place].first, &_items[place].second})
    for (std::size_t other : *held)
      if (isFixed(other)) visit(other);
}

/// A circle of objects that cannot change would never die. No writer of good will has one, because
/// it cannot be made; so those that nobody holds are put aside until none, or a circle, is left.
bool Reader::checkCircles() {
  std::vector<std::size_t> holders(_items.size(), 0), free;
  std::size_t left = 0;
  for (std::size_t place = 0; place < _items.size(); ++place)
    if (isFixed(place)) ++left, forEachFixedHeldBy(place, [&](std::size_t one) { ++holders[one]; });
  for (std::size_t place = 0; place < _items.size(); ++place)
    if (isFixed(place) && holders[place] == 0) free.push_back(place);
  for (; !free.empty(); --left) {
    const std::size_t place = free.back();
    free.pop_back();
    forEachFixedHeldBy(place, [&](std::size_t one) {
      if (--holders[one] == 0) free.push_back(one);
    });
  }
  return left == 0 || fail("a collection that cannot change holds itself");
}

/// Takes what was made apart, because what holds itself would never die.
void Reader::abandon() {
  for (Item& item : _items) {
    if (auto* array = cast<NSMutableArray>(item.object))
      array->removeAllObjects();
    else if (auto* dictionary = cast<NSMutableDictionary>(item.object))
      dictionary->removeAllObjects();
    else if (cast<NSArray>(item.object))
      static_cast<LateArray*>(item.object.get())->fill({});
    else if (cast<NSDictionary>(item.object))
      static_cast<LateDictionary*>(item.object.get())->clear();
  }
}

ArchiveReading Reader::read(std::string_view bytes) {
  _content = kFreeContent + kContentPerByte * bytes.size();
  auto [archive, fault] = archiveFromBinary(bytes);
  if (!archive) return {.fault = std::move(fault)};
  if (!readHead(archive)) return {.fault = std::move(_fault)};
  if (isAbsent(_root)) return {.hasRoot = true};
  _items.resize(_objects->count());
  const Outcome outcome = walk(_root);
  if (outcome == Outcome::TooDeep)
    fail("more than " + std::to_string(kDeepestArchive) + " levels of objects");
  if (outcome != Outcome::Done || !checkUserInfos() || !checkCircles()) {
    abandon();
    return {.fault = std::move(_fault)};
  }
  return {.root = _items[_root].object, .hasRoot = true};
}

}  // namespace

ArchiveReading readArchive(std::string_view bytes) { return Reader().read(bytes); }

}  // namespace kbx
