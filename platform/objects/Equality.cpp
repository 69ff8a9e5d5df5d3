#include "platform/objects/Equality.h"

#include <functional>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"

namespace kbx {
namespace {

using Pair = std::pair<NSObject*, NSObject*>;

struct HashOfPair {
  std::size_t operator()(const Pair& pair) const noexcept {
    const std::hash<NSObject*> hash;
    return hash(pair.first) * 31 + hash(pair.second);
  }
};

template <class T>
bool areBoth(NSObject* a, NSObject* b) {
  return cast<T>(a) && cast<T>(b);
}

class Comparison {
 public:
  bool run(NSObject* a, NSObject* b) {
    if (!areSame(a, b)) return false;
    while (!_open.empty()) {
      const auto [first, second] = std::exchange(_open.back(), {});
      _open.pop_back();
      if (!holdSame(first, second)) return false;
    }
    return true;
  }

 private:
  /// False when the two are known to differ; what they hold may still be open.
  bool areSame(NSObject* a, NSObject* b) {
    if (!a || !b || a == b) return a && b;
    if (!areBoth<NSArray>(a, b) && !areBoth<NSDictionary>(a, b) && !areBoth<NSError>(a, b))
      return !isContainer(a) && a->isEqual(b);
    if (_seen.emplace(a, b).second) _open.emplace_back(a, b);
    return true;
  }

  static bool isContainer(NSObject* object) {
    return cast<NSArray>(object) || cast<NSDictionary>(object) || cast<NSError>(object);
  }

  bool holdSame(NSObject* a, NSObject* b) {
    if (auto* array = cast<NSArray>(a)) return holdSame(*array, *cast<NSArray>(b));
    if (auto* dictionary = cast<NSDictionary>(a))
      return holdSame(*dictionary, *cast<NSDictionary>(b));
    auto *one = cast<NSError>(a), *other = cast<NSError>(b);
    return one->code() == other->code() && one->domain()->isEqual(other->domain()) &&
           areSame(one->userInfo(), other->userInfo());
  }

  bool holdSame(NSArray& a, NSArray& b) {
    if (a.count() != b.count()) return false;
    for (std::size_t i = 0; i < a.count(); ++i)
      if (!areSame(a.begin()[i], b.begin()[i])) return false;
    return true;
  }

  bool holdSame(NSDictionary& a, NSDictionary& b) {
    if (a.count() != b.count()) return false;
    for (const auto& [key, value] : a)
      if (!areSame(value, b.objectForKey(key))) return false;
    return true;
  }

  std::vector<Pair> _open;
  std::unordered_set<Pair, HashOfPair> _seen;
};

}  // namespace

bool areEqualContainers(NSObject* a, NSObject* b) { return Comparison().run(a, b); }

}  // namespace kbx
