#include "platform/archives/ArchiveWriter.h"

#include <unordered_map>
#include <utility>

#include "platform/archives/ArchiveFormat.h"
#include "platform/archives/ArchiveWalk.h"
#include "platform/archives/NSKeyedArchiver.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSError.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "platform/objects/SeededHash.h"
#include "platform/propertylists/BinaryPropertyListWriter.h"
#include "platform/propertylists/NSKeyedArchiverUID.h"

namespace kbx {
namespace {

Ref<NSObject> reference(std::size_t place) { return NSKeyedArchiverUID::UIDWithValue(place); }

/// The class that says how an object is written: its own or the nearest above that is known here.
NSClass* archivedClass(NSObject* object) {
  static NSClass* const known[] = {NSString::classObject(),
                                   NSNumber::classObject(),
                                   NSDate::classObject(),
                                   NSData::classObject(),
                                   NSMutableData::classObject(),
                                   NSArray::classObject(),
                                   NSMutableArray::classObject(),
                                   NSDictionary::classObject(),
                                   NSMutableDictionary::classObject(),
                                   NSURL::classObject(),
                                   NSError::classObject(),
                                   NSNull::classObject()};
  if (object->isClassObject()) {
    if (object->conformsToProtocol("NSCoding")) return NSClass::classObject();
    raiseUnrecognizedSelector(object, "encodeWithCoder:");
  }
  for (NSClass* c = object->objectClass(); c; c = c->superclass())
    for (NSClass* one : known)
      if (one == c) return c;
  raiseUnrecognizedSelector(object, "encodeWithCoder:");
}

/// Whether the object stands in the list as it is. The text of the absent object may not.
bool isPlain(NSObject* object, NSClass* archived) {
  if (archived == NSString::classObject()) return !isEqual(object, archive::null());
  return archived == NSNumber::classObject() || archived == NSData::classObject();
}

/// Whether the bytes of a plain object may be few enough to be shared.
bool isShort(NSObject* object) {
  if (auto* text = cast<NSString>(object)) return text->length() <= kLongestSharedLeaf;
  auto* data = cast<NSData>(object);
  return !data || data->length() <= kLongestSharedLeaf;
}

void requireKey(NSObject* key) {
  NSClass* archived = archivedClass(key);
  for (NSClass* holder : {NSArray::classObject(), NSDictionary::classObject(),
                          NSError::classObject(), NSClass::classObject()})
    if (archived == holder || archived->superclass() == holder)
      raiseInvalidArchiveOperation("a dictionary with a key of the class " + archived->name());
}

class Writer final : public ArchiveWalk {
 public:
  Ref<NSData> write(NSObject* root);

 private:
  /// An object as it is being written.
  struct Item {
    Ref<NSMutableDictionary> parts = NSMutableDictionary::dictionary();
    std::vector<std::size_t> held{};
  };

  Opened open(std::size_t place) override;
  bool close(std::size_t) override { return true; }

  std::size_t placeOf(NSObject* object);
  std::size_t placeOfClass(NSClass* archived);
  std::size_t append(NSObject* object);
  void hold(Item& item, NSString* name, NSObject* object);
  void holdAll(Item& item, NSString* name, const NSArray::Elements& objects);
  void describe(Item& item, NSObject* object, NSClass* archived);
  void describeDictionary(Item& item, NSDictionary* dictionary);
  void describeURL(Item& item, NSURL* url);
  void describeError(Item& item, NSError* error);

  NSArray::Elements _objects;                          // as they are; later as they are written
  std::unordered_map<NSObject*, std::size_t> _places;  // by identity
  std::unordered_map<std::string, std::size_t, SeededHash> _leaves;  // short plain ones by bytes
  std::vector<Ref<NSObject>> _made;  // lives as long as its identity counts
};

std::size_t Writer::append(NSObject* object) {
  _objects.emplace_back(object);
  return _objects.size() - 1;
}

/// The place of an object, a new one at its first mention. Equal short leaves share one, as they
/// would in the bytes anyway.
std::size_t Writer::placeOf(NSObject* object) {
  if (!object) return 0;
  auto [found, isNew] = _places.try_emplace(object, _objects.size());
  if (!isNew) return found->second;
  if (isPlain(object, archivedClass(object)) && isShort(object)) {
    std::string bytes = binaryFromLeaf(object);
    if (bytes.size() <= kLongestSharedLeaf)
      found->second = _leaves.try_emplace(std::move(bytes), _objects.size()).first->second;
  }
  if (found->second == _objects.size()) append(object);
  return found->second;
}

std::size_t Writer::placeOfClass(NSClass* archived) {
  auto [found, isNew] = _places.try_emplace(archived->objectClass(), _objects.size());
  if (!isNew) return found->second;
  NSArray::Elements names;
  for (NSClass* c = archived; c; c = c->superclass()) names.push_back(c->description());
  auto first = names.front();
  append(NSDictionary::dictionaryWithPairs(
      {{archive::classNames(), NSArray::arrayWithElements(std::move(names))},
       {archive::className(), first}}));
  return found->second;
}

void Writer::hold(Item& item, NSString* name, NSObject* object) {
  const std::size_t place = placeOf(object);
  if (object) item.held.push_back(place);
  item.parts->setObjectForKey(reference(place), name);
}

void Writer::holdAll(Item& item, NSString* name, const NSArray::Elements& objects) {
  NSArray::Elements references;
  references.reserve(objects.size());
  for (const auto& object : objects) {
    item.held.push_back(placeOf(object));
    references.push_back(reference(item.held.back()));
  }
  item.parts->setObjectForKey(NSArray::arrayWithElements(std::move(references)), name);
}

void Writer::describeDictionary(Item& item, NSDictionary* dictionary) {
  NSArray::Elements keys, values;
  for (const auto& [key, value] : *dictionary) {
    requireKey(key);
    keys.push_back(key);
    values.push_back(value);
  }
  holdAll(item, archive::keys(), keys);
  holdAll(item, archive::elements(), values);
}

void Writer::describeURL(Item& item, NSURL* url) {
  _made.emplace_back(url->absoluteString());
  hold(item, archive::base(), nullptr);
  hold(item, archive::relative(), _made.back());
}

void Writer::describeError(Item& item, NSError* error) {
  hold(item, archive::errorDomain(), error->domain());
  item.parts->setObjectForKey(NSNumber::numberWithInteger(error->code()), archive::errorCode());
  hold(item, archive::errorUserInfo(), error->userInfo());
}

void Writer::describe(Item& item, NSObject* object, NSClass* archived) {
  if (auto* array = cast<NSArray>(object))
    return holdAll(item, archive::elements(), NSArray::Elements(array->begin(), array->end()));
  if (auto* dictionary = cast<NSDictionary>(object)) return describeDictionary(item, dictionary);
  if (auto* url = cast<NSURL>(object)) return describeURL(item, url);
  if (auto* error = cast<NSError>(object)) return describeError(item, error);
  if (auto* date = cast<NSDate>(object))
    item.parts->setObjectForKey(NSNumber::numberWithDouble(date->timeIntervalSinceReferenceDate()),
                                archive::seconds());
  else if (auto* data = cast<NSData>(object))
    item.parts->setObjectForKey(data->copy(), archive::bytes());
  else if (cast<NSString>(object))
    item.parts->setObjectForKey(object, archive::text());
  else if (archived == NSClass::classObject())
    item.parts->setObjectForKey(object->description(), archive::nameOfClass());
}

Writer::Opened Writer::open(std::size_t place) {
  const Ref<NSObject> object = _objects[place];
  NSClass* archived = archivedClass(object);
  if (isPlain(object, archived)) return {.isLeaf = true};
  Item item;
  describe(item, object, archived);
  item.parts->setObjectForKey(reference(placeOfClass(archived)), archive::objectClass());
  _made.push_back(object);
  _objects[place] = item.parts;
  return {.held = std::move(item.held)};
}

Ref<NSData> Writer::write(NSObject* root) {
  append(archive::null());
  const std::size_t place = placeOf(root);
  if (root && walk(place) == Outcome::TooDeep)
    raiseInvalidArchiveOperation("more than " + std::to_string(kDeepestArchive) +
                                 " levels of objects");
  auto top = NSDictionary::dictionaryWithPairs({{archive::root(), reference(place)}});
  return binaryFromPropertyList(NSDictionary::dictionaryWithPairs(
      {{archive::archiver(), archive::archiverName()},
       {archive::objects(), NSArray::arrayWithElements(std::move(_objects))},
       {archive::top(), top},
       {archive::version(), NSNumber::numberWithInteger(archive::kVersion)}}));
}

}  // namespace

Ref<NSData> archiveWithRoot(NSObject* root) { return Writer().write(root); }

}  // namespace kbx
