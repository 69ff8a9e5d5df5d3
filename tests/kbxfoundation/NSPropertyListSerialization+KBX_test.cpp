#include "NSPropertyListSerialization+KBX.h"

#include "NSError+KBX.h"
#include "platform/objects/NSNull.h"
#include "tests/support/PropertyLists.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

using namespace test;

const std::string kClass = "+[NSPropertyListSerialization(KBX) ";
const std::string kDataFrame = kClass + "kbxDataFromPropertyList:format:error:] ";
const std::string kWriteFrame = kClass + "kbxWritePropertyList:toURL:format:error:] ";
const std::string kParseFrame = kClass + "kbxPropertyListFromData:options:format:error:] ";
const std::string kReadFrame = kClass + "kbxPropertyListWithContentsOfURL:options:format:error:] ";

NSObject* valueOf(NSError* error, NSString* key) { return error->userInfo()->objectForKey(key); }

std::string frames(NSError* error) {
  auto* array = cast<NSArray>(valueOf(error, "KBXStackFrames"_ns));
  return array ? text(array->componentsJoinedByString("\n"_ns)) : "";
}

void expectMissing(NSError* error, NSString* requirement, const std::string& frame) {
  ASSERT_TRUE(error);
  EXPECT_TRUE(kbxHasDomain(error, KBXErrorDomain(), 901));
  EXPECT_TRUE(isEqual(valueOf(error, "KBXFailingObject"_ns), requirement));
  EXPECT_EQ(frames(error), frame);
}

TEST(NSPropertyListSerializationKBX, ListsGoToDataAndBack) {
  auto list = RandomList(1).dictionary(3);
  for (auto format : {kXML, kBinary}) {
    Ref<NSError> error;
    auto bytes = kbxDataFromPropertyList(list, format, &error);
    ASSERT_TRUE(bytes);
    NSPropertyListFormat found{};
    EXPECT_TRUE(isEqual(kbxPropertyListFromData(bytes, 0, &found, &error), list));
    EXPECT_EQ(found, format);
    EXPECT_TRUE(isEqual(kbxReadData(bytes, &error), list));
    EXPECT_EQ(error, nullptr);
  }
  EXPECT_TRUE(
      isEqual(kbxBinaryFrom(list, nullptr), kbxDataFromPropertyList(list, kBinary, nullptr)));
}

TEST(NSPropertyListSerializationKBX, ListsGoToFilesAndBack) {
  TemporaryFolder folder;
  auto list = RandomList(2).dictionary(3);
  for (auto format : {kXML, kBinary}) {
    Ref<NSError> error;
    EXPECT_TRUE(kbxWritePropertyList(list, folder.url("a"), format, &error));
    EXPECT_EQ(folder.read("a"), written(list, format));
    NSPropertyListFormat found{};
    EXPECT_TRUE(isEqual(kbxReadURL(folder.url("a"), 0, &found, &error), list));
    EXPECT_EQ(found, format);
    EXPECT_TRUE(isEqual(kbxReadURL(folder.url("a"), &error), list));
    EXPECT_EQ(error, nullptr);
  }
}

TEST(NSPropertyListSerializationKBX, OptionsReachTheParser) {
  TemporaryFolder folder;
  auto url = folder.write("a", "<array/>");
  EXPECT_TRUE(cast<NSMutableArray>(kbxReadURL(url, 1, nullptr, nullptr)));
  EXPECT_FALSE(cast<NSMutableArray>(kbxReadURL(url, nullptr)));
  EXPECT_TRUE(cast<NSMutableArray>(kbxPropertyListFromData(data("<array/>"), 1, nullptr, nullptr)));
}

TEST(NSPropertyListSerializationKBX, AMissingArgumentIsError901) {
  Ref<NSError> error;
  EXPECT_FALSE(kbxDataFromPropertyList(nullptr, kXML, &error));
  expectMissing(error, "plist"_ns, kDataFrame + "(13)");
  EXPECT_FALSE(kbxBinaryFrom(nullptr, &error));
  expectMissing(error, "plist"_ns, kDataFrame + "(13)");
  EXPECT_FALSE(kbxWritePropertyList(nullptr, nullptr, kXML, &error));
  expectMissing(error, "plist"_ns, kWriteFrame + "(34)");
  EXPECT_FALSE(kbxPropertyListFromData(nullptr, 0, nullptr, &error));
  expectMissing(error, "data"_ns, kParseFrame + "(57)");
  EXPECT_FALSE(kbxReadData(nullptr, &error));
  expectMissing(error, "data"_ns, kParseFrame + "(57)");
  EXPECT_FALSE(kbxReadURL(nullptr, 0, nullptr, &error));
  expectMissing(error, "url"_ns, kReadFrame + "(74)");
  EXPECT_FALSE(kbxWritePropertyList("a"_ns, nullptr, kXML, &error));
  expectMissing(error, "url"_ns, kWriteFrame + "(42)");
}

TEST(NSPropertyListSerializationKBX, AListThatCannotBeWrittenIsTheFailingObject) {
  TemporaryFolder folder;
  auto list = NSArray::arrayWithObjects({NSNull::null()});
  Ref<NSError> error;
  EXPECT_FALSE(kbxDataFromPropertyList(list, kXML, &error));
  EXPECT_TRUE(isSame(valueOf(error, "KBXFailingObject"_ns), list));
  EXPECT_EQ(frames(error), kDataFrame + "(21)");
  EXPECT_TRUE(kbxHasDomain(error, NSCocoaErrorDomain(), NSPropertyListWriteStreamError));

  EXPECT_FALSE(kbxWritePropertyList(list, folder.url("a"), kBinary, &error));
  EXPECT_TRUE(isSame(valueOf(error, "KBXFailingObject"_ns), list));
  EXPECT_EQ(text(valueOf(error, NSFilePathErrorKey())), folder.path() / "a");
  EXPECT_EQ(frames(error), kWriteFrame + "(39)\n" + kDataFrame + "(21)");
  EXPECT_EQ(folder.count(), 0u);
}

TEST(NSPropertyListSerializationKBX, AnotherFormatFailsInTheSerialiser) {
  for (std::uint64_t format : {0u, 1u, 101u}) {
    Ref<NSError> error;
    EXPECT_FALSE(
        kbxDataFromPropertyList("a"_ns, static_cast<NSPropertyListFormat>(format), &error));
    EXPECT_TRUE(isEqual(valueOf(error, "KBXFailingObject"_ns), "a"_ns));
    EXPECT_EQ(frames(error), kDataFrame + "(21)");
  }
}

TEST(NSPropertyListSerializationKBX, AFileThatCannotBeWrittenKeepsItsOwnError) {
  TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_FALSE(kbxWritePropertyList("a"_ns, folder.url("none/a"), kXML, &error));
  EXPECT_TRUE(kbxHasDomain(error, NSCocoaErrorDomain(), NSFileNoSuchFileError));
  EXPECT_EQ(valueOf(error, "KBXFailingObject"_ns), nullptr);
  EXPECT_EQ(frames(error), kWriteFrame + "(42)");
}

TEST(NSPropertyListSerializationKBX, BytesThatHoldNoListAreShownFromTheirStart) {
  for (std::size_t length : {0u, 1u, 1023u, 1024u, 1025u, 5000u}) {
    std::string garbage;
    for (std::size_t i = 0; i < length; ++i) garbage += static_cast<char>('a' + i % 26);
    Ref<NSError> error;
    EXPECT_FALSE(kbxReadData(kbx::data(garbage), &error));
    ASSERT_TRUE(error);
    EXPECT_TRUE(kbxHasDomain(error, NSCocoaErrorDomain(), NSPropertyListReadCorruptError));
    EXPECT_EQ(text(cast<NSData>(valueOf(error, "KBXFailingObject"_ns))), garbage.substr(0, 1024));
    EXPECT_EQ(frames(error), kParseFrame + "(67)");
  }
}

TEST(NSPropertyListSerializationKBX, ABadFileIsNamedAndAnUnreadableOneKeepsItsError) {
  TemporaryFolder folder;
  Ref<NSError> error;
  EXPECT_FALSE(kbxReadURL(folder.write("bad", "bplist00junk"), &error));
  EXPECT_EQ(text(valueOf(error, NSFilePathErrorKey())), folder.path() / "bad");
  EXPECT_EQ(text(cast<NSData>(valueOf(error, "KBXFailingObject"_ns))), "bplist00junk");
  EXPECT_EQ(frames(error), kReadFrame + "(85)\n" + kParseFrame + "(67)");

  EXPECT_FALSE(kbxPropertyListWithContentsOfURL(folder.url("none"), 0, nullptr, &error));
  EXPECT_TRUE(kbxHasDomain(error, NSCocoaErrorDomain(), NSFileReadNoSuchFileError));
  EXPECT_EQ(frames(error), kReadFrame + "(77)");
}

TEST(NSPropertyListSerializationKBX, WithoutAPlaceForTheErrorTheResultIsEnough) {
  TemporaryFolder folder;
  auto list = NSArray::arrayWithObjects({NSNull::null()});
  EXPECT_FALSE(kbxDataFromPropertyList(nullptr, kXML, nullptr));
  EXPECT_FALSE(kbxDataFromPropertyList(list, kXML, nullptr));
  EXPECT_FALSE(kbxWritePropertyList(list, folder.url("a"), kXML, nullptr));
  EXPECT_FALSE(kbxWritePropertyList("a"_ns, folder.url("none/a"), kXML, nullptr));
  EXPECT_FALSE(kbxReadData(data("junk"), nullptr));
  EXPECT_FALSE(kbxReadURL(folder.url("none"), nullptr));
  EXPECT_FALSE(kbxReadURL(folder.write("bad", "junk"), nullptr));
}

}  // namespace
}  // namespace kbx
