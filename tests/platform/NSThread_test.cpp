#include "platform/threads/NSThread.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "tests/support/Text.h"

namespace kbx {
namespace {

void inAnotherThread(const std::function<void()>& work) { std::thread(work).join(); }

TEST(NSThread, AThreadIsTheSameObjectInEachOfItsCalls) {
  EXPECT_TRUE(isSame(NSThread::currentThread(), NSThread::currentThread()));
}

TEST(NSThread, TheThreadThatTheProcessBeganWithIsTheMainThread) {
  EXPECT_TRUE(NSThread::currentThread()->isMainThread());
}

TEST(NSThread, AnotherThreadIsAnotherObjectAndNotTheMainThread) {
  auto first = NSThread::currentThread();
  inAnotherThread([&] {
    auto second = NSThread::currentThread();
    EXPECT_FALSE(isSame(first, second));
    EXPECT_FALSE(second->isMainThread());
  });
}

TEST(NSThread, AThreadsObjectMayOutliveIt) {
  Ref<NSThread> kept;
  inAnotherThread([&] {
    kept = NSThread::currentThread();
    kept->setName("Worker"_ns);
  });
  EXPECT_EQ(text(kept->name()), "Worker");
}

TEST(NSThread, ANameIsEmptyUntilOneIsSet) {
  EXPECT_EQ(text(NSThread::currentThread()->name()), "");
  inAnotherThread([] {
    auto thread = NSThread::currentThread();
    EXPECT_EQ(text(thread->name()), "");
    thread->setName("Worker"_ns);
    EXPECT_EQ(text(NSThread::currentThread()->name()), "Worker");
    thread->setName(nullptr);
    EXPECT_EQ(text(thread->name()), "");
  });
}

/// Asks for its thread when the thread's variables are being destroyed.
struct AsksAtTheEnd {
  Ref<NSThread>* answer = nullptr;
  ~AsksAtTheEnd() {
    if (answer) *answer = NSThread::currentThread();
  }
};

TEST(NSThread, AThreadHasAnObjectWhileItEnds) {
  Ref<NSThread> atTheEnd;
  inAnotherThread([&] {
    static thread_local AsksAtTheEnd asks;
    asks.answer = &atTheEnd;
    NSThread::currentThread();
  });
  EXPECT_TRUE(atTheEnd);
}

}  // namespace
}  // namespace kbx
