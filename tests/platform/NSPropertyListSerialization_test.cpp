#include "platform/propertylists/NSPropertyListSerialization.h"

#include <gtest/gtest.h>

#include "tests/support/PropertyLists.h"

namespace kbx {
namespace {

using namespace test;

constexpr NSPropertyListFormat kFormats[] = {kXML, kBinary};

TEST(NSPropertyListSerialization, FiveHundredGeneratedListsComeBackEqual) {
  for (auto format : kFormats)
    for (std::uint32_t seed = 0; seed < 500; ++seed) {
      SCOPED_TRACE(seed);
      auto list = RandomList(seed).list();
      const std::string bytes = written(list, format);
      Ref<NSError> error;
      auto back = read(bytes, &error);
      ASSERT_TRUE(back) << error->description()->lossyUTF8() << bytes;
      ASSERT_TRUE(isEqual(back, list)) << bytes;
      ASSERT_EQ(written(back, format), bytes);
    }
}

TEST(NSPropertyListSerialization, TheFormatIsTakenFromTheBytes) {
  for (auto format : kFormats) {
    auto data = NSPropertyListSerialization::dataWithPropertyList("a"_ns, format, 0, nullptr);
    NSPropertyListFormat found{};
    EXPECT_TRUE(isEqual(NSPropertyListSerialization::propertyListWithData(data, 0, &found, nullptr),
                        "a"_ns));
    EXPECT_EQ(found, format);
  }
}

TEST(NSPropertyListSerialization, AFormatThatIsNotKnownIsAnError) {
  for (std::uint64_t format : {0u, 1u, 99u, 101u, 300u}) {
    Ref<NSError> error;
    EXPECT_FALSE(NSPropertyListSerialization::dataWithPropertyList(
        "a"_ns, static_cast<NSPropertyListFormat>(format), 0, &error));
    ASSERT_TRUE(error);
    EXPECT_TRUE(isEqual(error->domain(), NSCocoaErrorDomain()));
    EXPECT_EQ(error->code(), NSPropertyListWriteInvalidError);
    EXPECT_EQ(error->localizedDescription()->lossyUTF8(),
              "The property list couldn’t be written: the format " + std::to_string(format) +
                  " is not known.");
  }
}

TEST(NSPropertyListSerialization, AnAbsentListOrBufferIsAnErrorThatNobodyNeedsToTake) {
  Ref<NSError> error;
  EXPECT_FALSE(NSPropertyListSerialization::dataWithPropertyList(nullptr, kXML, 0, &error));
  EXPECT_EQ(error->code(), NSPropertyListWriteInvalidError);
  EXPECT_FALSE(NSPropertyListSerialization::propertyListWithData(nullptr, 0, nullptr, &error));
  EXPECT_EQ(error->code(), NSPropertyListReadCorruptError);
  EXPECT_FALSE(NSPropertyListSerialization::dataWithPropertyList(nullptr, kXML, 0, nullptr));
  EXPECT_FALSE(NSPropertyListSerialization::propertyListWithData(nullptr, 0, nullptr, nullptr));
}

TEST(NSPropertyListSerialization, ContainersAreMutableThroughoutWhenAsked) {
  auto inner = NSDictionary::dictionaryWithPairs({{"k"_ns, NSArray::array()}});
  auto list = NSArray::arrayWithObjects({inner.get()});
  for (auto format : kFormats)
    for (NSPropertyListReadOptions options : {0u, 1u, 2u}) {
      auto back = read(written(list, format), nullptr, options);
      auto* array = cast<NSArray>(back);
      ASSERT_TRUE(array);
      auto* dictionary = cast<NSDictionary>(array->objectAtIndex(0));
      ASSERT_TRUE(dictionary);
      EXPECT_EQ(cast<NSMutableArray>(array) != nullptr, options != 0);
      EXPECT_EQ(cast<NSMutableDictionary>(dictionary) != nullptr, options != 0);
      EXPECT_EQ(cast<NSMutableArray>(dictionary->objectForKey("k"_ns)) != nullptr, options != 0);
    }
}

TEST(NSPropertyListSerialization, FiveHundredAndTwelveLevelsAreTheDeepest) {
  for (auto format : kFormats) {
    auto list = nested(512);
    auto back = read(written(list, format));
    EXPECT_TRUE(isEqual(back, list));
    EXPECT_NE(written(nested(513), format).find("more than 512 levels of containers stand at"),
              std::string::npos);
  }
}

TEST(NSPropertyListSerialization, AContainerThatHoldsItselfIsRefused) {
  auto list = NSMutableArray::array();
  list->addObject(list);
  list->addObject(list);
  for (auto format : kFormats)
    EXPECT_NE(written(list, format).find("more than 512 levels"), std::string::npos);
  list->removeAllObjects();
}

}  // namespace
}  // namespace kbx
