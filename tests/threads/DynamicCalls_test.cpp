// Calls by selector while other threads enter methods and exchange bodies.
#include "platform/runtime/DynamicCalls.h"

#include <atomic>
#include <thread>
#include <vector>

#include "tests/support/Text.h"

namespace kbx {
namespace {

Ref<NSString> first(NSClass*) { return "first"_ns; }
Ref<NSString> second(NSClass*) { return "second"_ns; }

TEST(DynamicCallsThreads, CallsFindAMethodWhileOthersAreEntered) {
  NSClass* base = NSClass::make("CalledByThreads", NSObject::classObject());
  NSClass* holder = base->objectClass();
  addMethod<&first>(holder, "first");
  addMethod<&second>(holder, "second");
  std::atomic<int> wrong = 0;
  std::vector<std::jthread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&] {
      for (int n = 0; n < 500; ++n) {
        const std::string answer = text(performSelector(base, SEL("first")));
        wrong += answer != "first" && answer != "second";
      }
    });
  threads.emplace_back([&] {
    for (int n = 0; n < 200; ++n)
      addMethod<&second>(holder, ("entered" + std::to_string(n)).c_str());
  });
  threads.emplace_back([&] {
    for (int n = 0; n < 200; ++n)
      NSClass::exchangeImplementations(holder->instanceMethod(SEL("first")),
                                       holder->instanceMethod(SEL("second")));
  });
  threads.clear();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(holder->directSelectors().size(), 202u);
}

TEST(DynamicCallsThreads, AMethodThatOneThreadEntersIsFoundByTheNext) {
  NSClass* made = NSClass::make("FilledByThreads", NSObject::classObject());
  EXPECT_EQ(made->instanceMethod(SEL("late")), nullptr);
  std::jthread([&] {
    made->addMethod(SEL("late"), reinterpret_cast<IMP>(&first), "@@:");
  }).join();
  EXPECT_NE(made->instanceMethod(SEL("late")), nullptr);
}

}  // namespace
}  // namespace kbx
