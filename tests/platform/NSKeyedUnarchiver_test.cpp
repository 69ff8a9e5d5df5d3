#include "platform/archives/NSKeyedUnarchiver.h"

#include <functional>

#include "platform/files/NSURL.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "platform/propertylists/BinaryPropertyListWriter.h"
#include "platform/propertylists/NSKeyedArchiverUID.h"
#include "platform/propertylists/NSPropertyListSerialization.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSNumber> number(std::int64_t value) { return NSNumber::numberWithInteger(value); }
Ref<NSObject> at(std::uint64_t place) { return NSKeyedArchiverUID::UIDWithValue(place); }
Ref<NSArray> list(std::initializer_list<Ref<NSObject>> elements) {
  return NSArray::arrayWithElements(elements);
}
Ref<NSArray> allAt(std::initializer_list<std::uint64_t> places) {
  NSArray::Elements elements;
  for (auto place : places) elements.push_back(at(place));
  return NSArray::arrayWithElements(elements);
}

struct Part {
  const char* name;
  Ref<NSObject> value;
};
Ref<NSMutableDictionary> parts(std::initializer_list<Part> all) {
  auto result = NSMutableDictionary::dictionary();
  for (const auto& [name, value] : all) result->setObjectForKey(value, string(name));
  return result;
}

/// An archive made by hand: place 0 is the absent object, place 1 the root.
class Archive {
 public:
  Archive& add(NSObject* object) {
    _objects.emplace_back(object);
    return *this;
  }
  /// An object, followed by its class.
  Archive& add(const char* className, std::initializer_list<Part> all) {
    auto object = parts(all);
    object->setObjectForKey(at(_objects.size() + 1), "$class"_ns);
    return add(object).add(parts({{"$classname", string(className)}}));
  }
  Archive& set(const char* name, NSObject* value) {
    _head->setObjectForKey(value, string(name));
    return *this;
  }
  Archive& remove(const char* name) {
    _head->removeObjectForKey(string(name));
    return *this;
  }
  Ref<NSData> data() {
    if (!_head->objectForKey("$objects"_ns) && _hasObjects)
      set("$objects", NSArray::arrayWithElements(_objects));
    return binaryFromPropertyList(_head);
  }
  Archive& withoutObjects() {
    _hasObjects = false;
    return *this;
  }

 private:
  bool _hasObjects = true;
  NSArray::Elements _objects{"$null"_ns};
  Ref<NSMutableDictionary> _head = parts({{"$archiver", "NSKeyedArchiver"_ns},
                                          {"$version", number(100000)},
                                          {"$top", parts({{"root", at(1)}})}});
};

Ref<NSObject> read(Archive& archive) {
  return NSKeyedUnarchiver::unarchiveObjectWithData(archive.data());
}

/// What is said to be wrong; "" when nothing is.
std::string faultOf(NSData* bytes) {
  Ref<NSError> error;
  auto object = NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(bytes, &error);
  if (!error) return "";
  EXPECT_EQ(object, nullptr);
  EXPECT_EQ(text(error->domain()), "NSCocoaErrorDomain");
  EXPECT_EQ(error->code(), 4864);
  const std::string said = text(error->localizedDescription()),
                    start = "The archive couldn’t be read: ";
  EXPECT_TRUE(said.starts_with(start) && said.ends_with("."));
  return said.substr(start.size(), said.size() - start.size() - 1);
}
std::string faultOf(Archive& archive) { return faultOf(archive.data()); }

TEST(NSKeyedUnarchiver, FormsOfOtherWritersAreRead) {
  EXPECT_EQ(text(read(Archive().add("plain"_ns))), "plain");
  EXPECT_EQ(text(read(Archive().add("NSString", {{"NS.string", "a"_ns}}))), "a");
  EXPECT_EQ(text(read(Archive().add("NSMutableString", {{"NS.string", "b"_ns}}))), "b");
  EXPECT_EQ(text(read(Archive().add("NSString", {{"NS.bytes", data("é")}}))), "é");
  EXPECT_EQ(text(read(Archive().add("NSString", {{"NS.string", "$null"_ns}}))), "$null");
  EXPECT_EQ(text(cast<NSData>(read(Archive().add("NSData", {{"NS.data", data("x")}})))), "x");
  EXPECT_EQ(
      text(cast<NSData>(read(Archive().add("NSMutableData", {{"NS.data", at(3)}}).add(data("y"))))),
      "y");
  EXPECT_TRUE(isEqual(read(Archive().add(NSDate::dateWithTimeIntervalSince1970(5))),
                      NSDate::dateWithTimeIntervalSince1970(5)));
  EXPECT_TRUE(isEqual(read(Archive().add("NSDate", {{"NS.time", number(5)}})),
                      NSDate::dateWithTimeIntervalSinceReferenceDate(5)));
  EXPECT_TRUE(isSame(read(Archive().add("NSNull", {})), NSNull::null()));
}

TEST(NSKeyedUnarchiver, PartsThatAreNotKnownArePassedOver) {
  EXPECT_EQ(text(read(Archive()
                          .set("$extra", "x"_ns)
                          .add("NSURL", {{"NS.base", at(0)},
                                         {"NS.relative", at(3)},
                                         {"NS.minimalBookmarkData", data("x")}})
                          .add("file:///tmp"_ns))),
            "file:///tmp");
}

TEST(NSKeyedUnarchiver, AnErrorWithoutUserInfoHasNone) {
  auto error =
      read(Archive()
               .add("NSError", {{"NSDomain", at(3)}, {"NSCode", number(-3)}, {"NSUserInfo", at(0)}})
               .add("D"_ns));
  ASSERT_TRUE(cast<NSError>(error));
  EXPECT_EQ(cast<NSError>(error)->code(), -3);
  EXPECT_EQ(cast<NSError>(error)->userInfo()->count(), 0u);
}

TEST(NSKeyedUnarchiver, ALocationIsJoinedWithItsBase) {
  Archive archive;
  archive.add("NSURL", {{"NS.base", at(4)}, {"NS.relative", at(3)}})
      .add("a%20file"_ns)
      .add("NSURL", {{"NS.base", at(0)}, {"NS.relative", at(6)}})
      .add("file:///tmp/folder/"_ns);
  EXPECT_EQ(text(read(archive)), "file:///tmp/folder/a%20file");
}

TEST(NSKeyedUnarchiver, WhatIsNoArchiveIsSaidToBeNone) {
  EXPECT_EQ(faultOf(static_cast<NSData*>(nullptr)), "there is no data");
  EXPECT_EQ(faultOf(data("")), "no archive of the binary form at byte 0");
  EXPECT_EQ(faultOf(data("bplist01")), "no archive of the binary form at byte 0");
  EXPECT_EQ(faultOf(data("bplist00")), "a trailer that does not fit the file at byte 0");
  for (const Ref<NSObject>& object :
       std::initializer_list<Ref<NSObject>>{"text"_ns, NSArray::array()})
    EXPECT_EQ(faultOf(binaryFromPropertyList(object)), "no archive of this archiver");
  EXPECT_EQ(faultOf(Archive().add("a"_ns).set("$archiver", "Another"_ns)),
            "no archive of this archiver");
  EXPECT_EQ(faultOf(Archive().add("a"_ns).remove("$archiver")), "no archive of this archiver");
  EXPECT_EQ(faultOf(Archive().add("a"_ns).remove("$version")), "an archive of another version");
  EXPECT_EQ(faultOf(Archive().add("a"_ns).set("$version", number(1))),
            "an archive of another version");
  EXPECT_EQ(faultOf(Archive().withoutObjects()), "no objects");
  EXPECT_EQ(faultOf(Archive().set("$objects", "text"_ns)), "no objects");
  EXPECT_EQ(faultOf(Archive().add("a"_ns).remove("$top")), "no objects");
}

TEST(NSKeyedUnarchiver, AnArchiveWithoutARootIsError4865) {
  Ref<NSError> error;
  auto bytes = Archive().add("a"_ns).set("$top", NSDictionary::dictionary()).data();
  EXPECT_EQ(NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(bytes, &error), nullptr);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code(), 4865);
}

TEST(NSKeyedUnarchiver, TheOtherFormRaisesWithTheSameWords) {
  auto raised = raisedBy([] { NSKeyedUnarchiver::unarchiveObjectWithData(data("")); });
  ASSERT_TRUE(raised);
  EXPECT_EQ(text(raised->name()), "NSInvalidUnarchiveOperationException");
  EXPECT_EQ(text(raised->reason()),
            "The archive couldn’t be read: no archive of the binary form at byte 0.");
}

TEST(NSKeyedUnarchiver, ReferencesToNothingAreRefused) {
  EXPECT_EQ(faultOf(Archive().set("$top", parts({{"root", at(9)}}))), "a root that is no object");
  EXPECT_EQ(faultOf(Archive().set("$top", parts({{"root", number(1)}})).add("a"_ns)),
            "a root that is no object");
  const std::string absent = "a collection with an absent element";
  EXPECT_EQ(faultOf(Archive().add("NSArray", {{"NS.objects", allAt({9})}})), absent);
  EXPECT_EQ(faultOf(Archive().add("NSArray", {{"NS.objects", allAt({0})}})), absent);
  EXPECT_EQ(faultOf(Archive().add("NSArray", {{"NS.objects", list({"a"_ns})}})), absent);
  EXPECT_EQ(faultOf(Archive().add("NSArray", {{"NS.objects", allAt({3})}}).add("$null"_ns)),
            absent);
}

TEST(NSKeyedUnarchiver, OtherClassesAreRefusedByName) {
  EXPECT_EQ(faultOf(Archive().add("NSTask", {})),
            "an object of the class “NSTask”, which cannot be unarchived");
  EXPECT_EQ(faultOf(Archive().add("NSObject", {})),
            "an object of the class “NSObject”, which cannot be unarchived");
  EXPECT_EQ(faultOf(Archive().add(std::string(1000, 'x').c_str(), {})),
            "an object of the class “a long name”, which cannot be unarchived");
  EXPECT_EQ(faultOf(Archive().add("NSClass", {{"NS.name", "NSObject"_ns}})),
            "an object whose NS.name is missing or of another kind")
      << "a class that does not adopt the protocol";
  EXPECT_EQ(faultOf(Archive().add("NSClass", {{"NS.name", "NoSuchClass"_ns}})),
            "an object whose NS.name is missing or of another kind");
}

TEST(NSKeyedUnarchiver, ObjectsWithoutTheirPartsAreRefused) {
  struct Case {
    const char* className;
    std::initializer_list<Part> parts;
    const char* missing;
  };
  const auto none = allAt({});
  for (const Case& one : std::initializer_list<Case>{
           {"NSString", {}, "NS.string"},
           {"NSString", {{"NS.string", number(1)}}, "NS.string"},
           {"NSString", {{"NS.string", at(0)}}, "NS.string"},
           {"NSString", {{"NS.bytes", data("\xFF")}}, "NS.string"},
           {"NSDate", {}, "NS.time"},
           {"NSDate", {{"NS.time", "5"_ns}}, "NS.time"},
           {"NSData", {}, "NS.data"},
           {"NSMutableData", {{"NS.data", "text"_ns}}, "NS.data"},
           {"NSArray", {}, "NS.objects"},
           {"NSMutableArray", {{"NS.objects", "text"_ns}}, "NS.objects"},
           {"NSDictionary", {{"NS.objects", none}}, "NS.keys"},
           {"NSMutableDictionary", {{"NS.keys", none}}, "NS.objects"},
           {"NSURL", {{"NS.base", at(0)}}, "NS.relative"},
           {"NSURL", {{"NS.relative", number(5)}}, "NS.relative"},
           {"NSError", {{"NSCode", number(1)}}, "NSDomain"},
           {"NSError", {{"NSDomain", "D"_ns}}, "NSCode"},
           {"NSError",
            {{"NSDomain", "D"_ns}, {"NSCode", number(1)}, {"NSUserInfo", at(2)}},
            "$class"},
           {"NSClass", {}, "NS.name"}}) {
    EXPECT_EQ(faultOf(Archive().add(one.className, one.parts)),
              std::string("an object whose ") + one.missing + " is missing or of another kind")
        << one.className;
  }
  EXPECT_EQ(faultOf(Archive().add(parts({}))),
            "an object whose $class is missing or of another kind");
  EXPECT_EQ(faultOf(Archive().add(parts({{"$class", at(2)}})).add("NSArray"_ns)),
            "an object whose $class is missing or of another kind");
  EXPECT_EQ(faultOf(Archive().add(list({}))), "an object of an unknown kind");
}

TEST(NSKeyedUnarchiver, AnErrorsUserInfoIsADictionaryThatCannotChange) {
  const auto none = allAt({});
  for (const char* className : {"NSArray", "NSMutableDictionary", "NSNull", "NSClass"})
    EXPECT_EQ(
        faultOf(Archive()
                    .add("NSError",
                         {{"NSDomain", "D"_ns}, {"NSCode", number(1)}, {"NSUserInfo", at(3)}})
                    .add(className,
                         {{"NS.keys", none}, {"NS.objects", none}, {"NS.name", "NSString"_ns}})),
        "an object whose NSUserInfo is missing or of another kind")
        << className;
}

TEST(NSKeyedUnarchiver, KeysAndValuesAreAsMany) {
  EXPECT_EQ(faultOf(Archive()
                        .add("NSDictionary", {{"NS.keys", allAt({3})}, {"NS.objects", allAt({})}})
                        .add("a"_ns)),
            "a dictionary with a key without a value");
}

TEST(NSKeyedUnarchiver, CollectionsErrorsAndClassesAreNoKeys) {
  const auto withKey = [](const char* className, std::initializer_list<Part> all) {
    return faultOf(Archive()
                       .add("NSDictionary", {{"NS.keys", allAt({3})}, {"NS.objects", allAt({5})}})
                       .add(className, all)
                       .add("value"_ns));
  };
  const std::string refused = "a dictionary with a collection or an error as a key";
  EXPECT_EQ(withKey("NSArray", {{"NS.objects", allAt({})}}), refused);
  EXPECT_EQ(withKey("NSMutableDictionary", {{"NS.keys", allAt({})}, {"NS.objects", allAt({})}}),
            refused);
  EXPECT_EQ(withKey("NSError", {{"NSDomain", "D"_ns}, {"NSCode", number(1)}}), refused);
  EXPECT_EQ(withKey("NSClass", {{"NS.name", "NSString"_ns}}), "a dictionary with a class as a key");
  EXPECT_EQ(withKey("NSNull", {}), "");
  EXPECT_EQ(
      faultOf(Archive().add("NSDictionary", {{"NS.keys", allAt({1})}, {"NS.objects", allAt({1})}})),
      refused)
      << "a dictionary as its own key";
}

TEST(NSKeyedUnarchiver, AnErrorHasTextsAsKeys) {
  EXPECT_EQ(faultOf(Archive()
                        .add("NSError",
                             {{"NSDomain", "D"_ns}, {"NSCode", number(1)}, {"NSUserInfo", at(3)}})
                        .add("NSDictionary", {{"NS.keys", allAt({5})}, {"NS.objects", allAt({5})}})
                        .add(number(5))),
            "an error with a key that is no text");
}

TEST(NSKeyedUnarchiver, LocationsInACircleAreRefused) {
  EXPECT_EQ(
      faultOf(Archive().add("NSURL", {{"NS.base", at(1)}, {"NS.relative", at(3)}}).add("a"_ns)),
      "an object whose NS.base is missing or of another kind");
  EXPECT_EQ(faultOf(Archive().add("NSURL", {{"NS.relative", at(3)}}).add("http://host/"_ns)),
            "a location that is no file’s");
  EXPECT_EQ(faultOf(Archive()
                        .add("NSURL", {{"NS.base", at(3)}, {"NS.relative", at(5)}})
                        .add("NSArray", {{"NS.objects", allAt({1})}})
                        .add("a"_ns)),
            "a location that is part of itself");
}

TEST(NSKeyedUnarchiver, ACircleOfWhatCannotChangeIsRefused) {
  const std::string refused = "a collection that cannot change holds itself";
  const auto circle = [](const char* first, const char* second) {
    return faultOf(Archive()
                       .add(first, {{"NS.objects", allAt({3, 3})}})
                       .add(second, {{"NS.keys", allAt({5})}, {"NS.objects", allAt({1})}})
                       .add("key"_ns));
  };
  EXPECT_EQ(faultOf(Archive().add("NSArray", {{"NS.objects", allAt({1})}})), refused);
  EXPECT_EQ(circle("NSArray", "NSDictionary"), refused);
  EXPECT_EQ(faultOf(Archive()
                        .add("NSError",
                             {{"NSDomain", "D"_ns}, {"NSCode", number(1)}, {"NSUserInfo", at(3)}})
                        .add("NSDictionary", {{"NS.keys", allAt({5})}, {"NS.objects", allAt({1})}})
                        .add("key"_ns)),
            refused);
}

TEST(NSKeyedUnarchiver, MoreThan512LevelsAreRefused) {
  const auto nested = [](std::uint64_t levels) {
    Archive archive;
    for (std::uint64_t i = 1; i < levels; ++i)
      archive.add(parts({{"$class", at(levels + 1)}, {"NS.objects", allAt({i + 1})}}));
    archive.add(parts({{"$class", at(levels + 1)}, {"NS.objects", allAt({})}}));
    return archive.add(parts({{"$classname", "NSArray"_ns}})).data();
  };
  EXPECT_EQ(faultOf(nested(512)), "");
  EXPECT_EQ(faultOf(nested(513)), "more than 512 levels of objects");
  EXPECT_EQ(faultOf(nested(20000)), "more than 512 levels of objects");
}

/// What is said of a list of many objects of the class that are made of the same long part.
///
/// partOf  the parts of one, from the place of the long part
std::string faultOfSharing(const char* className, NSObject* longPart,
                           const std::function<Ref<NSMutableDictionary>(Ref<NSObject>)>& partsOf) {
  Archive archive;
  constexpr std::uint64_t kObjects = 3000;
  NSArray::Elements elements;
  for (std::uint64_t i = 0; i < kObjects; ++i) elements.push_back(at(i + 4));
  archive.add(parts({{"$class", at(2)}, {"NS.objects", NSArray::arrayWithElements(elements)}}))
      .add(parts({{"$classname", "NSArray"_ns}}))
      .add(parts({{"$classname", string(className)}}));
  for (std::uint64_t i = 0; i < kObjects; ++i) {
    auto object = partsOf(at(kObjects + 4));
    object->setObjectForKey(at(3), "$class"_ns);
    archive.add(object);
  }
  archive.add(longPart);
  return faultOf(archive);
}

TEST(NSKeyedUnarchiver, PartsThatManyObjectsShareMakeNoLargeObjects) {
  struct Case {
    const char *className, *part;
    Ref<NSObject> value;
  };
  const std::string longText(100'000, 'x');
  for (const auto& [className, part, value] :
       {Case{"NSMutableData", "NS.data", data(longText)},
        {"NSString", "NS.bytes", data(longText)},
        {"NSURL", "NS.relative", string("file:///" + longText)}}) {
    EXPECT_EQ(faultOfSharing(className, value,
                             [part = part](auto place) {
                               return parts({{part, place}});
                             }),
              "shared parts make too large objects")
        << className;
  }
}

TEST(NSKeyedUnarchiver, ALongKeyIsNotHashedInAnyNumberOfDictionaries) {
  const std::string longText(100'000, 'x');
  const auto entry = [](auto place) {
    return parts({{"NS.keys", list({place})}, {"NS.objects", list({place})}});
  };
  for (const char* className : {"NSDictionary", "NSMutableDictionary"})
    for (const Ref<NSObject>& key :
         {Ref<NSObject>(string(longText)), Ref<NSObject>(data(longText))})
      EXPECT_EQ(faultOfSharing(className, key, entry), "shared parts make too large objects");
  EXPECT_EQ(faultOfSharing("NSDictionary", string(longText.substr(0, 1000)), entry), "");
}

TEST(NSKeyedUnarchiver, AnArchiveIsNoPropertyList) {
  Ref<NSError> error;
  EXPECT_EQ(NSPropertyListSerialization::propertyListWithData(
                NSKeyedArchiver::archivedDataWithRootObject("a"_ns), NSPropertyListImmutable,
                nullptr, &error),
            nullptr);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->code(), NSPropertyListReadCorruptError);
  Ref<NSError> unwritable;
  EXPECT_EQ(NSPropertyListSerialization::dataWithPropertyList(
                at(1), NSPropertyListBinaryFormat_v1_0, 0, &unwritable),
            nullptr);
}

TEST(NSKeyedUnarchiver, EveryTruncationAndEveryChangedByteIsReadOrRefused) {
  auto list = NSArray::arrayWithObjects(
      {"a"_ns, number(300).get(), data("bytes")->mutableCopy().get(),
       NSURL::fileURLWithPath("/tmp"_ns, true).get(),
       NSError::errorWithDomain("D"_ns, 1, NSDictionary::dictionaryWithPairs({{"k"_ns, "v"_ns}}))
           .get()});
  const std::string bytes(NSKeyedArchiver::archivedDataWithRootObject(list)->view());
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    EXPECT_NE(faultOf(data(bytes.substr(0, i))), "");
    for (const char value : {'\0', '\x01', '\x7F', '\x80', '\xFF'}) {
      std::string changed = bytes;
      changed[i] = value;
      Ref<NSError> error;
      NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(data(changed), &error);
    }
  }
}

}  // namespace
}  // namespace kbx
