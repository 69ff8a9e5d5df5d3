#include "platform/objects/SeededHash.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/files/NSURL.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

constexpr std::size_t kMany = 100'000;

std::string countingBytes(std::size_t length) {
  std::string bytes(length, '\0');
  std::iota(bytes.begin(), bytes.end(), '\0');
  return bytes;
}

TEST(SeededHash, TheHashIsSipHashWithOneAndThreeRounds) {
  // Reference values: another implementation's, for the key of zeros.
  EXPECT_EQ(sipHash("a", {}), 0x407448d2b89b1813);
  EXPECT_EQ(sipHash("abcdefg", {}), 0x6db12aae9070f506);
  EXPECT_EQ(sipHash("abcdefgh", {}), 0x3f7b849c0b8e35ea);
  EXPECT_EQ(sipHash("abcdefghi", {}), 0xf89b34a3d11eb6e5);
  EXPECT_EQ(sipHash(countingBytes(15), {}), 0xf30eb725bb91c9ea);
  EXPECT_EQ(sipHash(countingBytes(64), {}), 0x75e05fd5bbc870c6);
  // The published value of the empty text for the key 0, 1, 2, … 15.
  EXPECT_EQ(sipHash("", {0x0706050403020100, 0x0f0e0d0c0b0a0908}), 0xabac0158050fc4dc);
}

TEST(SeededHash, BothHalvesOfTheKeyCount) {
  std::set<std::uint64_t> hashes{sipHash("text", {}), sipHash("text", {1, 0}),
                                 sipHash("text", {0, 1}), sipHash("text", {1, 1})};
  EXPECT_EQ(hashes.size(), 4U);
}

TEST(SeededHash, TheProcessHasAKeyOfItsOwn) {
  EXPECT_EQ(seededHash("text"), seededHash(std::string("text")));
  EXPECT_NE(seededHash("text"), sipHash("text", {}));
}

/// The number of table places, of 2^18, where the search for one of the values begins.
template <class ValueAt>
std::size_t placesOf(ValueAt valueAt, HashKey key) {
  std::vector<bool> isHit(1U << 18);
  for (std::size_t i = 0; i < kMany; ++i) isHit[scatteredHash(valueAt(i), key) >> 46] = true;
  return static_cast<std::size_t>(std::count(isHit.begin(), isHit.end(), true));
}

/// A key that is the same in each run.
HashKey numberedKey(std::uint64_t number) {
  return {sipHash(std::to_string(number), {}), sipHash(std::to_string(number), {1, 1})};
}

TEST(SeededHash, ChosenValuesAreScatteredUnderEachKey) {
  // By chance 83,000 places are hit.
  constexpr std::uint64_t kInverse = 0xF1DE83E19937733D;  // of 0x9E3779B97F4A7C15, a usual factor
  static_assert(kInverse * 0x9E3779B97F4A7C15 == 1);
  for (std::uint64_t number = 0; number < 30; ++number) {
    const HashKey key = numberedKey(number);
    EXPECT_GT(placesOf([](std::uint64_t i) { return i * kInverse; }, key), 82'000U) << number;
    EXPECT_GT(placesOf([](std::uint64_t i) { return i; }, key), 82'000U) << number;
    EXPECT_GT(placesOf([](std::uint64_t i) { return i << 47; }, key), 82'000U) << number;
    EXPECT_GT(placesOf([](std::uint64_t i) { return i << 20 | 0xABCDE; }, key), 82'000U) << number;
  }
}

TEST(SeededHash, TheProcessScattersByAKeyOfItsOwn) {
  EXPECT_EQ(scatteredHash(1), scatteredHash(1));
  EXPECT_NE(scatteredHash(1), scatteredHash(1, {}));
}

// Keys that a well-known hash without a secret, that of a standard library, cannot tell apart. Each
// eight bytes change its state in a way that the next eight can take back.
constexpr std::uint64_t kFactor = 0xC6A4A7935BD1E995, kSeed = 0xC70F6907;

std::uint64_t inverse(std::uint64_t odd) {
  std::uint64_t result = odd;
  for (int i = 0; i < 5; ++i) result *= 2 - odd * result;
  return result;
}
std::uint64_t folded(std::uint64_t word) { return word ^ word >> 47; }

std::string collidingBytes(std::uint64_t number) {
  const std::uint64_t state = (kSeed ^ 16 * kFactor ^ folded(number * kFactor) * kFactor) * kFactor;
  const std::uint64_t back = inverse(kFactor);
  const std::uint64_t words[] = {number, folded((state ^ 0x1234'5678) * back) * back};
  std::string bytes(sizeof words, '\0');
  std::memcpy(bytes.data(), words, sizeof words);
  return bytes;
}

Ref<NSString> collidingText(std::uint64_t number) {
  const std::string bytes = collidingBytes(number);
  std::u16string units(bytes.size() / sizeof(char16_t), u'\0');
  std::memcpy(units.data(), bytes.data(), bytes.size());
  return NSString::stringWithUTF16(units);
}

/// Bytes that differ at their end alone.
Ref<NSData> longData(std::uint64_t number) {
  return data(std::string(200, 'x') + std::to_string(number));
}

/// A key that counts how often one is compared with another, and gives up when it is too often.
class CountingKey final : public NSObject {
  KBX_OBJECT(CountingKey, NSObject)
 public:
  static Ref<CountingKey> make(NSObject* value) {
    return Ref<CountingKey>::adopt(new CountingKey(value));
  }
  bool isEqual(NSObject* other) const override {
    if (++comparisons > 10 * kMany) throw std::runtime_error("too many comparisons");
    return kbx::isEqual(_value, static_cast<CountingKey*>(other)->_value);
  }
  std::size_t hash() const override { return _value->hash(); }

  static inline std::size_t comparisons = 0;

 private:
  explicit CountingKey(NSObject* value) : _value(value) {}
  const Ref<NSObject> _value;
};
KBX_CLASS(CountingKey)

template <class KeyAt>
std::size_t comparisonsFor(KeyAt keyAt) {
  CountingKey::comparisons = 0;
  auto entries = NSMutableDictionary::dictionary();
  for (std::size_t i = 0; i < kMany; ++i)
    entries->setObjectForKey("value"_ns, CountingKey::make(keyAt(i)));
  EXPECT_EQ(entries->count(), kMany);
  return CountingKey::comparisons;
}

TEST(SeededHash, KeysThatStrangersChooseAreNotComparedWithEachOther) {
#ifdef __GLIBCXX__
  const std::hash<std::string_view> plain;
  ASSERT_EQ(plain(collidingBytes(1)), plain(collidingBytes(kMany))) << "the keys are as intended";
#endif
  EXPECT_LT(comparisonsFor(collidingText), 10U);
  EXPECT_LT(comparisonsFor([](std::size_t i) { return data(collidingBytes(i)); }), 10U);
  EXPECT_LT(comparisonsFor(longData), 10U) << "no byte is left out";
}

TEST(SeededHash, LocationsAreHashedWithTheKeyToo) {
  EXPECT_EQ(NSURL::fileURLWithPath("/a"_ns, false)->hash(), seededHash("/a"));
}

}  // namespace
}  // namespace kbx
