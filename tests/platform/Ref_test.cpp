#include "platform/objects/Ref.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <thread>
#include <vector>

#include "platform/logging/NSLog.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Nesting.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

constexpr int kThreads = 8;

template <class Block>
void onManyThreads(Block block) {
  std::latch start(kThreads);
  std::vector<std::jthread> threads;
  for (int i = 0; i < kThreads; ++i)
    threads.emplace_back([&, i] {
      start.arrive_and_wait();
      block(i);
    });
}

/// Counts those that live, and writes without a lock when it dies.
class Counted final : public NSObject {
  KBX_OBJECT(Counted, NSObject)
 public:
  static Ref<Counted> make() { return Ref<Counted>::adopt(new Counted); }
  Ref<NSString> label() const { return "label"_ns; }
  Ref<NSString> title() const { return "title"_ns; }
  int value = 7;
  static inline std::atomic<int> living = 0;

 private:
  Counted() { ++living; }
  ~Counted() override {
    value = 0;
    --living;
  }
};
KBX_CLASS(Counted)

TEST(Ref, ManyThreadsShareAnObjectAndTheLastOneFreesIt) {
  for (int round = 0; round < 50; ++round) {
    std::vector<Ref<Counted>> refs(kThreads, Counted::make());
    onManyThreads([&](int thread) {
      auto& mine = refs[static_cast<std::size_t>(thread)];
      for (int i = 0; i < 100; ++i) {
        Ref<NSObject> copy = mine;
        Ref<Counted> again = cast<Counted>(copy);
        EXPECT_EQ(again->value, 7);
      }
      mine = nullptr;
    });
    ASSERT_EQ(Counted::living, 0);
  }
}

TEST(Ref, DeepNestingDiesOnEveryThreadAtOnce) {
  onManyThreads([](int) {
    for (int i = 0; i < 10; ++i) nestedArrays(2000);
  });
  auto shared = nestedArrays(20000);
  std::vector<Ref<NSArray>> refs(kThreads, std::move(shared));
  onManyThreads([&](int thread) { refs[static_cast<std::size_t>(thread)] = nullptr; });
}

TEST(Ref, ImmutableObjectsAreReadFromManyThreads) {
  auto number = NSNumber::numberWithInteger(3);
  auto info = NSDictionary::dictionaryWithPairs(
      {{"a"_ns, number}, {"b"_ns, NSArray::arrayWithObjects({"\u00E9"_ns})}});
  auto error = NSError::errorWithDomain("D"_ns, 1, info);
  const std::string expected = text(error);
  onManyThreads([&](int) {
    for (int i = 0; i < 100; ++i) {
      EXPECT_TRUE(isEqual(error, NSError::errorWithDomain("D"_ns, 1, info)));
      EXPECT_EQ(text(error), expected);
      EXPECT_EQ(info->objectForKey("a"_ns)->hash(), number->hash());
    }
  });
}

TEST(Ref, ConstantsSelectorsAndClassesAreMadeFromManyThreads) {
  std::vector<const void*> found(kThreads);
  onManyThreads([&](int thread) {
    auto* constant = NSString::constant("made at the same time");
    NSClass* made = NSClass::make("MadeAtTheSameTime", NSObject::classObject());
    EXPECT_EQ(made->superclass(), NSObject::classObject());
    EXPECT_EQ(SEL("atTheSameTime:"), SEL("atTheSameTime:"));
    EXPECT_NE(NSClass::named("MadeAtTheSameTime"), nullptr);
    found[static_cast<std::size_t>(thread)] = constant;
  });
  for (const void* one : found) EXPECT_EQ(one, found[0]);
}

TEST(Ref, MethodsAreExchangedWhileTheyAreCalled) {
  NSClass* made = Counted::classObject();
  addMethod<&Counted::label>(made, "label");
  addMethod<&Counted::title>(made, "title");
  Method *label = made->instanceMethod(SEL("label")), *title = made->instanceMethod(SEL("title"));
  auto object = Counted::make();
  onManyThreads([&](int thread) {
    for (int i = 0; i < 500; ++i) {
      if (thread == 0) NSClass::exchangeImplementations(label, title);
      const std::string answer = text(performSelector(object, SEL("label")));
      EXPECT_TRUE(answer == "label" || answer == "title");
    }
  });
}

TEST(Ref, MessagesAreLoggedFromManyThreads) {
  RecordingLog log;
  onManyThreads([&](int thread) {
    for (int i = 0; i < 100; ++i) NSLog("%d %d"_ns, thread, i);
  });
  EXPECT_EQ(log.lines().size(), 100U * kThreads);
}

}  // namespace
}  // namespace kbx
