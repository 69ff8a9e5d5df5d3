#include "platform/objects/NSDictionary.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Nesting.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSNumber> number(std::int64_t value) { return NSNumber::numberWithInteger(value); }

/// "key=value" of each entry, in order.
std::string entries(NSDictionary* dictionary) {
  std::string result;
  for (const auto& [key, value] : *dictionary)
    result += (result.empty() ? "" : " ") + text(key) + "=" + text(value);
  return result;
}

template <class Block>
std::string raised(Block block) {
  try {
    block();
  } catch (const Raised& raised) {
    return text(raised.exception()->name());
  }
  return "";
}

TEST(NSDictionary, EnumerationFollowsTheFirstInsertion) {
  auto one = NSDictionary::dictionaryWithPairs({{"z"_ns, number(1)}, {"a"_ns, number(2)}});
  EXPECT_EQ(entries(one), "z=1 a=2");
  EXPECT_EQ(text(one->allKeys()->componentsJoinedByString(","_ns)), "z,a");
  EXPECT_EQ(entries(NSDictionary::dictionary()), "");
  EXPECT_EQ(NSDictionary::dictionary()->allKeys()->count(), 0U);
}

TEST(NSDictionary, AReplacedValueKeepsThePlaceOfItsKey) {
  auto one = NSDictionary::dictionaryWithPairs(
      {{"z"_ns, number(1)}, {"a"_ns, number(2)}, {"z"_ns, number(3)}});
  EXPECT_EQ(entries(one), "z=3 a=2");
}

TEST(NSDictionary, AKeyIsFoundByItsValue) {
  auto one = NSDictionary::dictionaryWithPairs(
      {{"a"_ns, number(1)}, {number(7), number(2)}, {NSNull::null(), number(3)}});
  EXPECT_EQ(text(one->objectForKey(NSString::stringWithUTF16(u"a"))), "1");
  EXPECT_EQ(text(one->objectForKey(NSNumber::numberWithDouble(7))), "2");
  EXPECT_EQ(text(one->objectForKey(NSNull::null())), "3");
  EXPECT_EQ(one->objectForKey("7"_ns), nullptr);
  EXPECT_EQ(one->objectForKey(nullptr), nullptr);
  EXPECT_EQ(NSDictionary::dictionary()->objectForKey("a"_ns), nullptr);
}

TEST(NSDictionary, AnAbsentKeyOrValueRaises) {
  EXPECT_EQ(raised([] {
              NSDictionary::dictionaryWithPairs({{nullptr, number(1)}});
            }),
            "NSInvalidArgumentException");
  EXPECT_EQ(raised([] {
              NSDictionary::dictionaryWithPairs({{"a"_ns, nullptr}});
            }),
            "NSInvalidArgumentException");
  auto one = NSMutableDictionary::dictionary();
  EXPECT_EQ(raised([&] { one->setObjectForKey(nullptr, "a"_ns); }), "NSInvalidArgumentException");
  EXPECT_EQ(raised([&] { one->setObjectForKey("a"_ns, nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(one->count(), 0U);
}

TEST(NSDictionary, EqualityDoesNotAskForOrder) {
  auto one = NSDictionary::dictionaryWithPairs({{"a"_ns, number(1)}, {"b"_ns, number(2)}});
  auto turned = NSDictionary::dictionaryWithPairs({{"b"_ns, number(2)}, {"a"_ns, number(1)}});
  EXPECT_TRUE(isEqual(one, turned));
  EXPECT_EQ(one->hash(), turned->hash());
  EXPECT_TRUE(isEqual(one, one->mutableCopy()));
  auto differ = [&](const Ref<NSDictionary>& other) {
    return !isEqual(one, other) && !isEqual(other, one);
  };
  EXPECT_TRUE(differ(NSDictionary::dictionary()));
  EXPECT_TRUE(
      differ(NSDictionary::dictionaryWithPairs({{"a"_ns, number(1)}, {"c"_ns, number(2)}})));
  EXPECT_TRUE(
      differ(NSDictionary::dictionaryWithPairs({{"a"_ns, number(1)}, {"b"_ns, number(3)}})));
  EXPECT_FALSE(isEqual(one, "a"_ns));
  EXPECT_FALSE(one->isEqual(nullptr));
}

TEST(NSDictionary, ACopyOfAnImmutableDictionaryIsItself) {
  auto one = NSDictionary::dictionaryWithPairs({{"a"_ns, number(1)}});
  EXPECT_TRUE(isSame(one->copy(), one));
}

TEST(NSMutableDictionary, ACopyDoesNotChangeAnyMore) {
  auto one = NSMutableDictionary::dictionary();
  one->setObjectForKey(number(1), "a"_ns);
  auto copy = one->copy();
  one->setObjectForKey(number(2), "a"_ns);
  one->setObjectForKey(number(2), "b"_ns);
  EXPECT_EQ(entries(copy), "a=1");
  EXPECT_EQ(cast<NSMutableDictionary>(copy), nullptr);
}

TEST(NSMutableDictionary, AMutableKeyIsCopied) {
  auto one = NSMutableDictionary::dictionary();
  auto key = NSMutableData::dataWithLength(1);
  one->setObjectForKey(number(1), key);
  key->appendBytes("x");
  EXPECT_EQ(one->objectForKey(key), nullptr);
  EXPECT_EQ(text(one->objectForKey(NSMutableData::dataWithLength(1))), "1");
}

TEST(NSMutableDictionary, RemovalKeepsTheOrderOfTheOthers) {
  auto one = NSMutableDictionary::dictionary();
  for (int i = 0; i < 12; ++i) one->setObjectForKey(number(i), number(i));
  for (int i : {0, 5, 11, 7, 7}) one->removeObjectForKey(number(i));
  one->removeObjectForKey(nullptr);
  EXPECT_EQ(entries(one), "1=1 2=2 3=3 4=4 6=6 8=8 9=9 10=10");
  one->setObjectForKey(number(50), number(5));
  EXPECT_EQ(entries(one), "1=1 2=2 3=3 4=4 6=6 8=8 9=9 10=10 5=50") << "a key that returns is new";
  one->removeAllObjects();
  EXPECT_EQ(one->count(), 0U);
  EXPECT_EQ(one->objectForKey(number(1)), nullptr);
  one->setObjectForKey(number(1), number(1));
  EXPECT_EQ(entries(one), "1=1");
}

TEST(NSMutableDictionary, EntriesOfAnotherAreSet) {
  auto one = NSMutableDictionary::dictionary();
  one->setObjectForKey(number(1), "a"_ns);
  one->addEntriesFromDictionary(
      NSDictionary::dictionaryWithPairs({{"b"_ns, number(2)}, {"a"_ns, number(3)}}));
  one->addEntriesFromDictionary(one);
  one->addEntriesFromDictionary(nullptr);
  EXPECT_EQ(entries(one), "a=3 b=2");
}

TEST(NSMutableDictionary, AgreesWithAListOfPairs) {
  std::mt19937 random(1);
  auto one = NSMutableDictionary::dictionary();
  std::vector<std::pair<int, int>> expected;
  for (int round = 0; round < 20000; ++round) {
    const int key = static_cast<int>(random() % 40);
    auto found = std::ranges::find(expected, key, &std::pair<int, int>::first);
    if (random() % 3) {
      one->setObjectForKey(number(round), number(key));
      if (found == expected.end())
        expected.emplace_back(key, round);
      else
        found->second = round;
    } else {
      one->removeObjectForKey(number(key));
      if (found != expected.end()) expected.erase(found);
    }
    ASSERT_EQ(one->count(), expected.size());
  }
  std::string list;
  for (auto [key, value] : expected)
    list += (list.empty() ? "" : " ") + std::to_string(key) + "=" + std::to_string(value);
  EXPECT_EQ(entries(one), list);
}

TEST(NSMutableDictionary, ManyKeysOfEveryKindAreFound) {
  auto one = NSMutableDictionary::dictionary();
  constexpr int kMany = 10000;
  std::vector<Ref<NSObject>> keys;
  for (int i = 0; i < kMany; ++i) {
    keys.push_back(string("key" + std::to_string(i)));
    keys.push_back(number(std::int64_t{i} << 40));
    keys.push_back(NSNumber::numberWithDouble(i + 0.5));
  }
  for (const auto& key : keys) one->setObjectForKey(key, key);
  ASSERT_EQ(one->count(), keys.size());
  for (const auto& key : keys) ASSERT_TRUE(isSame(one->objectForKey(key), key));
  std::size_t at = 0;
  for (const auto& entry : *one) ASSERT_TRUE(isEqual(entry.key, keys[at++]));
}

/// Asks a dictionary for something when it dies.
class Asker final : public NSObject {
  KBX_OBJECT(Asker, NSObject)
 public:
  static Ref<Asker> make(NSDictionary* dictionary, std::string* seen) {
    return Ref<Asker>::adopt(new Asker(dictionary, seen));
  }

 private:
  Asker(NSDictionary* dictionary, std::string* seen) : _dictionary(dictionary), _seen(seen) {}
  ~Asker() override { *_seen += text(_dictionary->objectForKey(number(11))) + " "; }

  NSDictionary* _dictionary;
  std::string* _seen;
};
KBX_CLASS(Asker)

TEST(NSMutableDictionary, WhatIsRemovedDiesWhenTheDictionaryIsWholeAgain) {
  std::string seen;
  auto one = NSMutableDictionary::dictionary();
  auto put = [&](int key) { one->setObjectForKey(Asker::make(one, &seen), number(key)); };
  put(0);
  for (int i = 1; i < 12; ++i) one->setObjectForKey(number(i), number(i));
  put(0);
  EXPECT_EQ(seen, "11 ") << "the value before";
  one->removeObjectForKey(number(0));
  EXPECT_EQ(seen, "11 11 ");
  put(0);
  one->removeAllObjects();
  EXPECT_EQ(seen, "11 11 (null) ");
}

TEST(NSDictionary, NestingOfAnyDepthIsReleasedComparedAndHashed) {
  auto one = nestedDictionaries(300000), same = nestedDictionaries(300000),
       other = nestedDictionaries(299999);
  EXPECT_TRUE(isEqual(one, same));
  EXPECT_FALSE(isEqual(one, other));
  EXPECT_EQ(one->hash(), same->hash());
}

}  // namespace
}  // namespace kbx
