#include "host/import/AnswerCheck.h"

#include <cstddef>
#include <vector>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "platform/objects/NSString.h"

namespace kbx {
namespace {

constexpr std::size_t kDeepest = 512;  // levels of containers, as in property lists

/// A container that is still to be looked into.
struct Waiting {
  NSObject* container;
  std::size_t level;
};

bool isLeaf(NSObject* value) {
  return cast<NSString>(value) || cast<NSNumber>(value) || cast<NSData>(value) ||
         cast<NSDate>(value) || cast<NSNull>(value);
}

bool isContainer(NSObject* value) { return cast<NSArray>(value) || cast<NSDictionary>(value); }

/// What is wrong with one value of an attribute, looked into without recursion.
std::optional<std::string> faultInValue(NSObject* value) {
  std::vector<Waiting> waiting;
  std::optional<std::string> fault;
  auto take = [&](NSObject* object, std::size_t level) {
    if (isLeaf(object)) return;
    if (!isContainer(object))
      fault = "an object of class " + object->objectClass()->name();
    else if (level > kDeepest)
      fault = "more than " + std::to_string(kDeepest) + " levels of containers";
    else
      waiting.push_back({object, level});
  };
  take(value, 2);  // the attributes are the first level
  while (!fault && !waiting.empty()) {
    const auto [container, level] = waiting.back();
    waiting.pop_back();
    if (auto* array = cast<NSArray>(container)) {
      for (const auto& element : *array) take(element, level + 1);
    } else {
      for (const auto& [key, element] : *cast<NSDictionary>(container)) {
        if (!cast<NSString>(key)) fault = "a key of class " + key->objectClass()->name();
        take(element, level + 1);
      }
    }
  }
  return fault;
}

}  // namespace

std::optional<std::string> faultInAnswer(NSDictionary* attributes) {
  for (const auto& [key, value] : *attributes) {
    auto* name = cast<NSString>(key);
    if (!name) return "it names an attribute by an object of class " + key->objectClass()->name();
    if (auto fault = faultInValue(value)) return "“" + name->lossyUTF8() + "” holds " + *fault;
  }
  return std::nullopt;
}

}  // namespace kbx
