// Property lists of both forms against libplist, where there is one to build with.
#include <gtest/gtest.h>

#include "tests/support/PropertyLists.h"

#ifdef FERNCASE_HAS_LIBPLIST

#include <plist/plist.h>

#include <cmath>
#include <cstdlib>
#include <memory>

namespace kbx {
namespace {

using namespace test;

constexpr std::uint32_t kLists = 300;

using Peer = std::unique_ptr<void, decltype(&plist_free)>;

Peer peerRead(const std::string& bytes, NSPropertyListFormat format) {
  plist_t list = nullptr;
  const auto size = static_cast<std::uint32_t>(bytes.size());
  format == kXML ? plist_from_xml(bytes.data(), size, &list)
                 : plist_from_bin(bytes.data(), size, &list);
  return {list, &plist_free};
}

std::string peerWritten(const Peer& list, NSPropertyListFormat format) {
  char* bytes = nullptr;
  std::uint32_t size = 0;
  format == kXML ? plist_to_xml(list.get(), &bytes, &size)
                 : plist_to_bin(list.get(), &bytes, &size);
  const std::unique_ptr<char, decltype(&std::free)> owned(bytes, &std::free);
  return {bytes, size};
}

/// The peer's XML has no references for returns, and fewer digits of real numbers.
bool isAlmostEqual(NSObject* a, NSObject* b);

bool isAlmostEqual(const NSArray& a, const NSArray& b) {
  if (a.count() != b.count()) return false;
  for (std::size_t i = 0; i < a.count(); ++i)
    if (!isAlmostEqual(a.objectAtIndex(i), b.objectAtIndex(i))) return false;
  return true;
}

Ref<NSString> withFeeds(NSString* text) {
  return text->stringByReplacingOccurrences("\r\n"_ns, "\n"_ns);
}

bool isAlmostEqual(const NSDictionary& a, NSDictionary& b) {
  for (const auto& [key, value] : a) {
    NSObject* other = b.objectForKey(key);
    if (!other) other = b.objectForKey(withFeeds(cast<NSString>(key)));
    if (!other || !isAlmostEqual(value, other)) return false;
  }
  return true;
}

bool isAlmostEqual(NSObject* a, NSObject* b) {
  if (auto* one = cast<NSArray>(a), *other = cast<NSArray>(b); one && other)
    return isAlmostEqual(*one, *other);
  if (auto* one = cast<NSDictionary>(a), *other = cast<NSDictionary>(b); one && other)
    return isAlmostEqual(*one, *other);
  if (auto* one = cast<NSString>(a), *other = cast<NSString>(b); one && other)
    return isEqual(withFeeds(one), withFeeds(other));
  auto *one = cast<NSNumber>(a), *other = cast<NSNumber>(b);
  if (!one || !other || one->kind() != NSNumber::Kind::Real) return isEqual(a, b);
  const double real = one->doubleValue();
  return std::abs(real - other->doubleValue()) <= 1e-6 * std::max(1.0, std::abs(real));
}

TEST(PropertyListPeer, LibplistReadsWhatIsWritten) {
  for (std::uint32_t seed = 0; seed < kLists; ++seed)
    for (auto format : {kXML, kBinary}) {
      auto list = RandomList(seed).list();
      const Peer peers = peerRead(written(list, format), format);
      ASSERT_TRUE(peers) << seed;
      EXPECT_TRUE(isEqual(read(peerWritten(peers, kBinary)), list)) << seed << " " << format;
    }
}

TEST(PropertyListPeer, WhatLibplistWritesIsRead) {
  for (std::uint32_t seed = 0; seed < kLists; ++seed) {
    auto list = RandomList(seed).list();
    const Peer peers = peerRead(written(list, kBinary), kBinary);
    ASSERT_TRUE(peers) << seed;
    EXPECT_TRUE(isEqual(read(peerWritten(peers, kBinary)), list)) << seed;
    auto fromXML = read(peerWritten(peers, kXML));
    ASSERT_TRUE(fromXML) << seed << fault(peerWritten(peers, kXML));
    EXPECT_TRUE(isAlmostEqual(list, fromXML)) << seed;
  }
}

}  // namespace
}  // namespace kbx

#else

TEST(PropertyListPeer, LibplistReadsWhatIsWritten) { GTEST_SKIP() << "built without libplist"; }
TEST(PropertyListPeer, WhatLibplistWritesIsRead) { GTEST_SKIP() << "built without libplist"; }

#endif
