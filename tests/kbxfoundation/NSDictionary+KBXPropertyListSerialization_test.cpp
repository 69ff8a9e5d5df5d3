#include "NSDictionary+KBXPropertyListSerialization.h"

#include "NSError+KBX.h"
#include "NSPropertyListSerialization+KBX.h"
#include "platform/objects/NSNull.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

using namespace test;

const std::string kClass = "+[NSPropertyListSerialization(KBX) ";
const std::string kDictionaryFrame =
    "+[NSDictionary(KBXPropertyListSerialization) kbxReadURL:error:] (122)";

NSObject* valueOf(NSError* error, NSString* key) { return error->userInfo()->objectForKey(key); }

std::string frames(NSError* error) {
  auto* array = cast<NSArray>(valueOf(error, "KBXStackFrames"_ns));
  return array ? text(array->componentsJoinedByString("\n"_ns)) : "";
}

TEST(NSDictionaryKBXPropertyListSerialization, ADictionaryGoesToAFileAndBack) {
  TemporaryFolder folder;
  auto list = RandomList(3).dictionary(3);
  auto* dictionary = cast<NSDictionary>(list);
  Ref<NSError> error;
  EXPECT_TRUE(kbxWriteXMLToURL(dictionary, folder.url("xml"), &error));
  EXPECT_TRUE(kbxWriteBinaryToURL(dictionary, folder.url("binary"), &error));
  EXPECT_EQ(folder.read("xml"), written(dictionary, kXML));
  EXPECT_EQ(folder.read("binary"), written(dictionary, kBinary));
  for (auto* name : {"xml", "binary"})
    EXPECT_TRUE(
        isEqual(kbxReadURL(NSDictionary::classObject(), folder.url(name), &error), dictionary));
  EXPECT_EQ(error, nullptr);
}

TEST(NSDictionaryKBXPropertyListSerialization,
     TheMutableClassAndItsSubclassesGiveMutableContainers) {
  static auto* const subclass =
      NSClass::make("MutableDictionaryOfTheTest", NSMutableDictionary::classObject());
  TemporaryFolder folder;
  auto url = folder.write("a", "<dict><key>k</key><array><dict/></array></dict>");
  for (auto [receiver, isMutable] : {std::pair{NSDictionary::classObject(), false},
                                     {NSMutableDictionary::classObject(), true},
                                     {subclass, true},
                                     {NSObject::classObject(), false}}) {
    auto list = kbxReadURL(receiver, url, nullptr);
    ASSERT_TRUE(list);
    auto* array = cast<NSArray>(list->objectForKey("k"_ns));
    EXPECT_EQ(cast<NSMutableDictionary>(list) != nullptr, isMutable);
    EXPECT_EQ(cast<NSMutableArray>(array) != nullptr, isMutable);
    EXPECT_EQ(cast<NSMutableDictionary>(array->objectAtIndex(0)) != nullptr, isMutable);
  }
}

TEST(NSDictionaryKBXPropertyListSerialization, AnArrayIsNoDictionaryWhicheverClassIsAsked) {
  TemporaryFolder folder;
  auto url = folder.write("a", "<array/>");
  for (auto* receiver : {NSDictionary::classObject(), NSMutableDictionary::classObject()}) {
    Ref<NSError> error;
    EXPECT_FALSE(kbxReadURL(receiver, url, &error));
    ASSERT_TRUE(error);
    EXPECT_TRUE(kbxHasDomain(error, KBXErrorDomain(), 902));
    EXPECT_TRUE(isSame(valueOf(error, "KBXExpectedType"_ns), NSDictionary::classObject()));
    EXPECT_EQ(frames(error), kDictionaryFrame + "\n-[NSObject(KBX) kbxEnsureClass:error:] (34)");
    EXPECT_TRUE(cast<NSArray>(kbxReadURL(url, &error)));
  }
}

TEST(NSDictionaryKBXPropertyListSerialization, ABadFilePassesThreeFunctions) {
  TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_FALSE(kbxReadURL(NSDictionary::classObject(), folder.write("bad", "junk"), &error));
  EXPECT_EQ(frames(error), kDictionaryFrame + "\n" + kClass +
                               "kbxPropertyListWithContentsOfURL:options:format:error:] (85)\n" +
                               kClass + "kbxPropertyListFromData:options:format:error:] (67)");
  EXPECT_FALSE(kbxReadURL(NSDictionary::classObject(), nullptr, &error));
  EXPECT_EQ(frames(error), kDictionaryFrame + "\n" + kClass +
                               "kbxPropertyListWithContentsOfURL:options:format:error:] (74)");
}

TEST(NSDictionaryKBXPropertyListSerialization, AnUnreadableFilePassesTwoFunctions) {
  TemporaryFolder folder;
  for (auto* receiver : {NSDictionary::classObject(), NSMutableDictionary::classObject()}) {
    Ref<NSError> error;
    EXPECT_FALSE(kbxReadURL(receiver, folder.url("none"), &error));
    ASSERT_TRUE(error);
    EXPECT_TRUE(kbxHasDomain(error, NSCocoaErrorDomain(), NSFileReadNoSuchFileError));
    EXPECT_EQ(frames(error), kDictionaryFrame + "\n" + kClass +
                                 "kbxPropertyListWithContentsOfURL:options:format:error:] (77)");
    EXPECT_FALSE(kbxReadURL(receiver, folder.url("none"), nullptr));
  }
}

TEST(NSDictionaryKBXPropertyListSerialization, ADictionaryThatCannotBeWrittenPassesTwoFunctions) {
  TemporaryFolder folder;
  auto list = NSDictionary::dictionaryWithPairs({{"k"_ns, NSNull::null()}});
  for (auto* write : {&kbxWriteXMLToURL, &kbxWriteBinaryToURL}) {
    Ref<NSError> error;
    EXPECT_FALSE(write(list, folder.url("a"), &error));
    ASSERT_TRUE(error);
    EXPECT_EQ(frames(error), kClass + "kbxWritePropertyList:toURL:format:error:] (39)\n" + kClass +
                                 "kbxDataFromPropertyList:format:error:] (21)");
    EXPECT_FALSE(write(nullptr, folder.url("a"), nullptr));
  }
}

}  // namespace
}  // namespace kbx
