#include "NSMutableDictionary+KBXFillerBlocks.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>
#include <vector>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSNumber.h"
#include "platform/threads/NSThread.h"
#include "platform/threads/Synchronized.h"
#include "tests/support/RaisedBy.h"
#include "tests/support/ServingMainThread.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

NSString* key() { return "key"_ns; }
bool isMainThread() { return NSThread::currentThread()->isMainThread(); }
Ref<NSObject> number(int value) { return NSNumber::numberWithInteger(value); }

/// One of the operations that fill.
struct Form {
  const char* selector;
  bool isOnMainThread;
  bool isSynchronized;
  std::function<Ref<NSObject>(NSMutableDictionary*, NSObject*, const FillerBlock&)> call;
};

std::vector<Form> forms() {
  std::vector<Form> all = {
      {"kbxObjectForKey:fillerBlock:", false, false, kbxObjectForKeyFillerBlock},
      {"kbxObjectForKey:mainThreadFillerBlock:", true, false, kbxObjectForKeyMainThreadFillerBlock},
      {"kbxSynchronizedObjectForKey:fillerBlock:", false, true,
       kbxSynchronizedObjectForKeyFillerBlock},
      {"kbxSynchronizedObjectForKey:mainThreadFillerBlock:", true, true,
       kbxSynchronizedObjectForKeyMainThreadFillerBlock}};
  for (bool synchronized : {false, true})
    for (bool mainThread : {false, true})
      all.push_back({"kbxObjectForKey:synchronized:mainThread:fillerBlock:", mainThread,
                     synchronized, [=](auto* dictionary, auto* wanted, const auto& filler) {
                       return kbxObjectForKeySynchronized(dictionary, wanted, synchronized,
                                                          mainThread, filler);
                     }});
  return all;
}

/// Runs a check with each of the operations, on the main thread and on another one.
void withEachForm(const std::function<void(const Form&)>& check) {
  for (const auto& form : forms()) {
    SCOPED_TRACE(form.selector);
    check(form);
    serveThread([&] { check(form); });
  }
}

TEST(NSMutableDictionaryKBXFillerBlocks, AMissingValueIsMadeAndStored) {
  withEachForm([](const Form& form) {
    auto dictionary = NSMutableDictionary::dictionary();
    auto made = number(1);
    EXPECT_TRUE(isSame(form.call(dictionary, key(), [&] { return made; }), made));
    EXPECT_TRUE(isSame(dictionary->objectForKey(key()), made));
    EXPECT_EQ(dictionary->count(), 1U);
  });
}

TEST(NSMutableDictionaryKBXFillerBlocks, APresentValueIsAnsweredWithoutCallingTheFiller) {
  withEachForm([](const Form& form) {
    auto dictionary = NSMutableDictionary::dictionary();
    auto present = number(1);
    dictionary->setObjectForKey(present, key());
    int calls = 0;
    auto found = form.call(dictionary, key(), [&] {
      ++calls;
      return number(2);
    });
    EXPECT_TRUE(isSame(found, present));
    EXPECT_EQ(calls, 0);
  });
}

TEST(NSMutableDictionaryKBXFillerBlocks, AFillerThatAnswersAbsentIsCalledAtEveryLookup) {
  withEachForm([](const Form& form) {
    auto dictionary = NSMutableDictionary::dictionary();
    int calls = 0;
    for (int lookup = 1; lookup <= 3; ++lookup) {
      EXPECT_FALSE(form.call(dictionary, key(), [&]() -> Ref<NSObject> {
        ++calls;
        return nullptr;
      }));
      EXPECT_EQ(calls, lookup);
      EXPECT_EQ(dictionary->count(), 0U);
    }
  });
}

TEST(NSMutableDictionaryKBXFillerBlocks, TheMainThreadFormsRunTheFillerOnTheMainThread) {
  withEachForm([](const Form& form) {
    auto dictionary = NSMutableDictionary::dictionary();
    std::thread::id ranOn;
    bool wasMainThread = false;
    form.call(dictionary, key(), [&] {
      ranOn = std::this_thread::get_id();
      wasMainThread = isMainThread();
      return number(1);
    });
    if (form.isOnMainThread)
      EXPECT_TRUE(wasMainThread);
    else
      EXPECT_EQ(ranOn, std::this_thread::get_id());
  });
}

TEST(NSMutableDictionaryKBXFillerBlocks, WhatTheFillerRaisesPassesAndNothingIsStored) {
  withEachForm([](const Form& form) {
    auto dictionary = NSMutableDictionary::dictionary();
    auto exception = NSException::exceptionWithName("A"_ns, nullptr, nullptr);
    auto raising = [&]() -> Ref<NSObject> { exception->raise(); };
    EXPECT_TRUE(isSame(raisedBy([&] { form.call(dictionary, key(), raising); }), exception));
    auto throwing = []() -> Ref<NSObject> { throw std::runtime_error("foreign"); };
    EXPECT_THROW(form.call(dictionary, key(), throwing), std::runtime_error);
    EXPECT_EQ(dictionary->count(), 0U);
    auto made = number(1);
    EXPECT_TRUE(isSame(form.call(dictionary, key(), [&] { return made; }), made));
  });
}

TEST(NSMutableDictionaryKBXFillerBlocks, NoLockIsHeldWhileAFillerRunsAndTheLaterStoreWins) {
  for (const auto& form : forms()) {
    if (form.isOnMainThread) continue;  // the main thread would wait for itself
    SCOPED_TRACE(form.selector);
    auto dictionary = NSMutableDictionary::dictionary();
    auto first = number(1), second = number(2);
    Ref<NSObject> secondAnswer;
    auto firstAnswer = form.call(dictionary, key(), [&] {
      // Would never end if the first thread held the lock.
      std::thread([&, &run = form.call] {
        secondAnswer = run(dictionary, key(), [&] { return second; });
      }).join();
      EXPECT_TRUE(isSame(dictionary->objectForKey(key()), second));
      return first;
    });
    EXPECT_TRUE(isSame(firstAnswer, first)) << "each caller gets what its own filler made";
    EXPECT_TRUE(isSame(secondAnswer, second));
    EXPECT_TRUE(isSame(dictionary->objectForKey(key()), first));
  }
}

TEST(NSMutableDictionaryKBXFillerBlocks, AMainThreadFillerMayUseTheDictionaryOfTheWaitingThread) {
  auto dictionary = NSMutableDictionary::dictionary();
  serveThread([&] {
    kbxSynchronizedObjectForKeyMainThreadFillerBlock(dictionary, key(), [&] {
      return kbxSynchronizedObjectForKeyFillerBlock(dictionary, "other"_ns,
                                                    [] { return number(2); });
    });
  });
  EXPECT_EQ(text(dictionary->objectForKey(key())), "2");
  EXPECT_EQ(text(dictionary->objectForKey("other"_ns)), "2");
}

/// A key, equal to itself alone, that sees whether several threads are inside the dictionary.
class WatchedKey final : public NSObject {
  KBX_OBJECT(WatchedKey, NSObject)
 public:
  struct Watch {
    std::atomic<int> inside{0};
    std::atomic<int> meetings{0};
  };
  static Ref<WatchedKey> keyWithWatch(Watch& watch) {
    return Ref<WatchedKey>::adopt(new WatchedKey(watch));
  }
  bool isEqual(NSObject* other) const override {
    look();
    return this == other;
  }
  std::size_t hash() const override {
    look();
    return 1;
  }

 private:
  explicit WatchedKey(Watch& watch) : _watch(watch) {}
  void look() const {
    ++_watch.inside;
    for (int i = 0; i < 20; ++i) {
      if (_watch.inside > 1) ++_watch.meetings;
      std::this_thread::yield();
    }
    --_watch.inside;
  }

  Watch& _watch;
};

KBX_CLASS(WatchedKey)

TEST(NSMutableDictionaryKBXFillerBlocks, ThreadsNeverMeetInsideASynchronizedDictionary) {
  for (const auto& form : forms()) {
    if (!form.isSynchronized) continue;
    SCOPED_TRACE(form.selector);
    WatchedKey::Watch watch;
    auto dictionary = NSMutableDictionary::dictionary();
    dictionary->setObjectForKey(number(0), WatchedKey::keyWithWatch(watch));
    serveThreads(8, [&](int) {
      for (int i = 0; i < 5; ++i)
        form.call(dictionary, WatchedKey::keyWithWatch(watch), [] { return number(1); });
    });
    EXPECT_EQ(watch.meetings, 0);
    EXPECT_EQ(dictionary->count(), 41U);
  }
}

TEST(NSMutableDictionaryKBXFillerBlocks, TheOtherFormsTakeNoLock) {
  for (const auto& form : forms()) {
    if (form.isSynchronized || form.isOnMainThread) continue;
    SCOPED_TRACE(form.selector);
    auto dictionary = NSMutableDictionary::dictionary();
    Synchronized lock(dictionary);
    std::thread([&, &run = form.call] {  // would never end
      run(dictionary, key(), [] { return number(2); });
    })
        .join();
    EXPECT_EQ(dictionary->count(), 1U);
  }
}

TEST(NSMutableDictionaryKBXFillerBlocks, LookingUpAndStoringAreOperationsOfTheirOwn) {
  for (bool synchronized : {false, true}) {
    SCOPED_TRACE(synchronized);
    auto dictionary = NSMutableDictionary::dictionary();
    EXPECT_FALSE(kbxObjectForKeySynchronized(dictionary, key(), synchronized));
    auto value = number(1);
    kbxSetObject(dictionary, value, key(), synchronized);
    EXPECT_TRUE(isSame(kbxObjectForKeySynchronized(dictionary, key(), synchronized), value));
    auto other = number(2);
    kbxSetObject(dictionary, other, key(), synchronized);
    EXPECT_TRUE(isSame(kbxObjectForKeySynchronized(dictionary, key(), synchronized), other));
  }
}

TEST(NSMutableDictionaryKBXFillerBlocks, AnExceptionLetsGoOfTheLock) {
  auto dictionary = NSMutableDictionary::dictionary();
  EXPECT_EQ(nameRaisedBy([&] { kbxSetObject(dictionary, nullptr, key(), true); }),
            "NSInvalidArgumentException");
  EXPECT_EQ(nameRaisedBy([&] { kbxSetObject(dictionary, key(), nullptr, true); }),
            "NSInvalidArgumentException");
  std::thread([&] { kbxSetObject(dictionary, number(1), key(), true); }).join();
  EXPECT_EQ(dictionary->count(), 1U);
}

TEST(NSMutableDictionaryKBXFillerBlocks, AnAbsentKeyHasNoValueAndStoresNone) {
  withEachForm([](const Form& form) {
    auto dictionary = NSMutableDictionary::dictionary();
    EXPECT_FALSE(form.call(dictionary, nullptr, []() -> Ref<NSObject> { return nullptr; }));
    EXPECT_EQ(nameRaisedBy([&] { form.call(dictionary, nullptr, [] { return number(1); }); }),
              "NSInvalidArgumentException");
  });
}

TEST(NSMutableDictionaryKBXFillerBlocks, AnAbsentDictionaryAnswersAbsent) {
  NSMutableDictionary* absent = nullptr;
  withEachForm([&](const Form& form) {
    int calls = 0;
    EXPECT_FALSE(form.call(absent, key(), [&] { return number(++calls); }));
    EXPECT_EQ(calls, 0);
  });
  EXPECT_FALSE(kbxObjectForKeySynchronized(absent, key(), true));
  kbxSetObject(absent, key(), key(), true);
}

TEST(NSMutableDictionaryKBXFillerBlocks, ManyThreadsFillOneDictionary) {
  constexpr int kKeys = 200;
  auto dictionary = NSMutableDictionary::dictionary();
  std::atomic<int> wrong{0};
  serveThreads(8, [&](int thread) {
    for (int i = 0; i < kKeys; ++i) {
      auto wanted = NSNumber::numberWithInteger(i);
      auto fill = [&] { return number(i); };
      auto found = thread % 2
                       ? kbxSynchronizedObjectForKeyFillerBlock(dictionary, wanted, fill)
                       : kbxSynchronizedObjectForKeyMainThreadFillerBlock(dictionary, wanted, fill);
      if (!isEqual(found, wanted)) ++wrong;
    }
  });
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(dictionary->count(), std::size_t{kKeys});
}

}  // namespace
}  // namespace kbx
