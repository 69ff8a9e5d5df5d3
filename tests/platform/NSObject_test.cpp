#include "platform/objects/NSObject.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSString.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

/// Tells when it dies, and may hold another.
class Link : public NSObject {
  KBX_OBJECT(Link, NSObject)
 public:
  static Ref<Link> make(std::vector<int>* deaths, int name, NSObject* next = nullptr) {
    return Ref<Link>::adopt(new Link(deaths, name, next));
  }

 protected:
  Link(std::vector<int>* deaths, int name, NSObject* next)
      : _deaths(deaths), _name(name), _next(next) {}
  ~Link() override { _deaths->push_back(_name); }

 private:
  std::vector<int>* _deaths;
  int _name;
  Ref<NSObject> _next;
};
KBX_CLASS(Link)

class Shown final : public Link {
  KBX_OBJECT(Shown, Link)
};
KBX_CLASS(Shown)

TEST(NSObject, DiesWithTheLastReference) {
  std::vector<int> deaths;
  Ref<Link> one = Link::make(&deaths, 1);
  Ref<Link> same = one;
  one = nullptr;
  EXPECT_TRUE(deaths.empty());
  same = nullptr;
  EXPECT_EQ(deaths, std::vector<int>{1});
}

TEST(NSObject, AHandleMovesAndConverts) {
  std::vector<int> deaths;
  {
    Ref<Link> one = Link::make(&deaths, 1);
    Ref<NSObject> base = one;
    Ref<NSObject> moved = std::move(one);
    EXPECT_TRUE(one == nullptr);  // NOLINT: what is left of it is the promise
    EXPECT_TRUE(isSame(base, moved));
    auto& self = moved;
    moved = self;
    moved = std::move(self);
    EXPECT_TRUE(isSame(base, moved));
    NSObject* given = moved.leak();
    EXPECT_FALSE(moved);
    base = nullptr;
    EXPECT_TRUE(deaths.empty());
    Ref<NSObject> taken = Ref<NSObject>::adopt(given);
    EXPECT_TRUE(deaths.empty());
  }
  EXPECT_EQ(deaths, std::vector<int>{1});
}

TEST(NSObject, WhatAnObjectHoldsDiesWithIt) {
  std::vector<int> deaths;
  Link::make(&deaths, 1, Link::make(&deaths, 2, Link::make(&deaths, 3)));
  EXPECT_EQ(deaths, (std::vector<int>{1, 2, 3}));
}

TEST(NSObject, AChainOfAnyLengthDiesBeforeItsReleaseReturns) {
  constexpr int kLength = 1000000;
  std::vector<int> deaths;
  Ref<NSObject> chain;
  for (int i = 0; i < kLength; ++i) chain = Link::make(&deaths, i, chain);
  chain = nullptr;
  EXPECT_EQ(deaths.size(), std::size_t{kLength});
  EXPECT_EQ(deaths.front(), kLength - 1);
}

TEST(NSObject, IdentityIsTheAddress) {
  std::vector<int> deaths;
  auto one = Link::make(&deaths, 1), other = Link::make(&deaths, 1);
  EXPECT_TRUE(isSame(one, one));
  EXPECT_FALSE(isSame(one, other));
  EXPECT_TRUE(isSame(nullptr, nullptr));
  EXPECT_FALSE(isSame(one, nullptr));
}

TEST(NSObject, TheRootClassKnowsNoEqualityButIdentity) {
  std::vector<int> deaths;
  auto one = Link::make(&deaths, 1), other = Link::make(&deaths, 1);
  EXPECT_TRUE(isEqual(one, one));
  EXPECT_FALSE(isEqual(one, other));
  EXPECT_EQ(one->hash(), one->hash());
  EXPECT_TRUE(isSame(one->copyObject(), one));
}

TEST(NSObject, AbsentEqualsNothing) {
  EXPECT_FALSE(isEqual(nullptr, nullptr));
  EXPECT_FALSE(isEqual("a"_ns, nullptr));
  EXPECT_FALSE(isEqual(nullptr, "a"_ns));
}

TEST(NSObject, AnObjectIsOfItsClassAndOfThoseAbove) {
  std::vector<int> deaths;
  auto one = Link::make(&deaths, 1);
  EXPECT_EQ(one->objectClass(), Link::classObject());
  EXPECT_TRUE(one->isKindOfClass(Link::classObject()));
  EXPECT_TRUE(one->isKindOfClass(NSObject::classObject()));
  EXPECT_FALSE(one->isKindOfClass(Shown::classObject()));
  EXPECT_FALSE(one->isKindOfClass(nullptr));
  EXPECT_FALSE(one->isClassObject());
}

TEST(NSObject, ACastAnswersTheSameObjectOrNothing) {
  std::vector<int> deaths;
  auto one = Link::make(&deaths, 1);
  NSObject* object = one;
  EXPECT_EQ(cast<Link>(object), one.get());
  EXPECT_EQ(cast<NSObject>(object), one.get());
  EXPECT_EQ(cast<Shown>(object), nullptr);
  EXPECT_EQ(cast<NSString>(object), nullptr);
  EXPECT_EQ(cast<Link>(nullptr), nullptr);
}

TEST(NSObject, TheDescriptionNamesClassAndAddress) {
  std::vector<int> deaths;
  auto one = Link::make(&deaths, 1);
  char address[40];
  std::snprintf(address, sizeof address, "<Link: %p>", static_cast<void*>(one.get()));
  EXPECT_EQ(text(one), address);
}

}  // namespace
}  // namespace kbx
