#include <gtest/gtest.h>

#include "platform/CoreFoundation.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"

using namespace kbx;

TEST(CFBase, TheReferenceOfAnObjectIsItsAddress) {
  NSString* text = "abc"_ns;
  EXPECT_EQ(static_cast<const void*>(toCF(text)), static_cast<const void*>(text));
  EXPECT_TRUE(isSame(fromCF(toCF(text)), text));
  EXPECT_TRUE(isSame(objectFromCF(toCFType(text)), text));
}

TEST(CFBase, RetainAnswersItsArgumentAndReleaseTakesItBack) {
  auto array = NSArray::arrayWithObjects({"a"_ns});
  EXPECT_EQ(CFRetain(toCF(array)), toCF(array));
  CFRelease(toCF(array));
  EXPECT_EQ(CFArrayGetCount(toCF(array)), 1);
}

TEST(CFBase, AbsentObjectsAreIgnored) {
  EXPECT_EQ(CFRetain(nullptr), nullptr);
  CFRelease(nullptr);
  EXPECT_FALSE(CFEqual(nullptr, nullptr));
  EXPECT_EQ(CFArrayGetCount(nullptr), 0);
  EXPECT_EQ(CFArrayGetValueAtIndex(nullptr, 0), nullptr);
  EXPECT_EQ(CFDictionaryGetCount(nullptr), 0);
  EXPECT_EQ(CFDictionaryGetValue(nullptr, CFSTR("a")), nullptr);
}

TEST(CFBase, EqualComparesValues) {
  auto first = NSString::stringWithUTF8("\xC3\xA9"), second = NSString::stringWithUTF8("\xC3\xA9");
  EXPECT_TRUE(CFEqual(toCF(first), toCF(second)));
  EXPECT_FALSE(CFEqual(toCF(first), CFSTR("e")));
}

TEST(CFBase, AnIndexOutsideTheArrayFindsNothing) {
  auto array = NSArray::arrayWithObjects({"a"_ns, "b"_ns});
  EXPECT_EQ(CFArrayGetValueAtIndex(toCF(array), 1), "b"_ns);
  EXPECT_EQ(CFArrayGetValueAtIndex(toCF(array), 2), nullptr);
  EXPECT_EQ(CFArrayGetValueAtIndex(toCF(array), -1), nullptr);
}

TEST(CFBase, ADictionaryTakesAndGivesObjects) {
  auto dictionary = NSMutableDictionary::dictionary();
  CFDictionarySetValue(toCF(dictionary), kMDItemTextContent, CFSTR("text"));
  EXPECT_EQ(CFDictionaryGetCount(toCF(dictionary)), 1);
  EXPECT_EQ(CFDictionaryGetValue(toCF(dictionary), CFSTR("kMDItemTextContent")), CFSTR("text"));
  EXPECT_EQ(CFDictionaryGetValue(toCF(dictionary), kMDItemHTMLContent), nullptr);
}

TEST(CFBase, SettingWhatIsAbsentOrInWhatCannotChangeDoesNothing) {
  auto dictionary = NSMutableDictionary::dictionary();
  CFDictionarySetValue(toCF(dictionary), nullptr, CFSTR("text"));
  CFDictionarySetValue(toCF(dictionary), CFSTR("key"), nullptr);
  CFDictionarySetValue(nullptr, CFSTR("key"), CFSTR("text"));
  EXPECT_EQ(dictionary->count(), 0u);
  auto fixed = NSDictionary::dictionary();
  CFDictionarySetValue(const_cast<CFMutableDictionaryRef>(toCF(fixed)), CFSTR("k"), CFSTR("v"));
  EXPECT_EQ(fixed->count(), 0u);
}

TEST(CFBase, AttributeNamesAreTheirOwnText) {
  EXPECT_TRUE(isSame(fromCF(kMDItemTextContent), "kMDItemTextContent"_ns));
  EXPECT_TRUE(isSame(fromCF(kMDItemHTMLContent), "kMDItemHTMLContent"_ns));
}
