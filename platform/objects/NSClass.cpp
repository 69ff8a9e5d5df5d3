#include "platform/objects/NSClass.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <set>
#include <unordered_map>

#include "platform/objects/NSString.h"
#include "platform/runtime/NSMethodSignature.h"

namespace kbx {
namespace {

// These live for ever: classes are made before main() and asked after it.
std::mutex& runtimeLock() {
  static auto* const lock = new std::mutex;
  return *lock;
}

// The first class of a name is the one that is found; the others are kept as well, being immortal.
std::unordered_map<std::string_view, std::vector<NSClass*>>& classesByName() {
  static auto* const classes = new std::unordered_map<std::string_view, std::vector<NSClass*>>;
  return *classes;
}

/// Grows with every method that is added anywhere.
constinit std::atomic<std::uint64_t> tableGeneration{1};

/// What a thread found, or that there is nothing, while the tables were of that generation.
struct Found {
  const NSClass* searched;
  SEL selector;
  std::uint64_t generation;
  Method* method;
};

constexpr std::size_t kRemembered = 256;
thread_local constinit Found remembered[kRemembered]{};

Found& placeOf(const NSClass* searched, SEL selector) {
  const auto a = reinterpret_cast<std::uintptr_t>(searched) >> 5;
  const auto b = reinterpret_cast<std::uintptr_t>(selector.name()) >> 4;
  return remembered[(a ^ b * 31) % kRemembered];
}

}  // namespace

SEL::SEL(std::string_view name) {
  static auto* const names = new std::set<std::string, std::less<>>;
  std::lock_guard lock(runtimeLock());
  auto found = names->find(name);
  if (found == names->end()) found = names->emplace(name).first;
  _name = found->c_str();
}

NSClass::NSClass(const char* name, NSClass* superclass, NSClass* metaclass)
    : _name(name), _superclass(superclass), _metaclass(metaclass) {}

NSClass* NSClass::classObject() {
  static NSClass* const object = NSClass::make("NSClass", NSObject::classObject());
  return object;
}

// KBX_CLASS registers every other class.
[[maybe_unused]] static auto* const registeredNSClass = NSClass::classObject();

NSClass* NSClass::make(const char* name, NSClass* superclass) {
  std::lock_guard lock(runtimeLock());
  NSClass* metaSuperclass = superclass ? superclass->_metaclass : nullptr;
  auto* metaclass = new NSClass(name, metaSuperclass, nullptr);
  auto* made = new NSClass(name, superclass, metaclass);
  if (!superclass) metaclass->_superclass = made;
  classesByName()[made->_name].push_back(made);
  return made;
}

NSClass* NSClass::named(std::string_view name) {
  std::lock_guard lock(runtimeLock());
  auto found = classesByName().find(name);
  return found == classesByName().end() ? nullptr : found->second.front();
}

Ref<NSString> NSClass::description() const { return NSString::stringWithLossyUTF8(_name); }

void NSClass::adoptProtocol(std::string_view protocol) {
  std::lock_guard lock(runtimeLock());
  _protocols.emplace_back(protocol);
}

bool NSClass::adoptsProtocol(std::string_view protocol) const {
  std::lock_guard lock(runtimeLock());
  for (const NSClass* c = this; c; c = c->_superclass)
    if (std::ranges::find(c->_protocols, protocol) != c->_protocols.end()) return true;
  return false;
}

Method* NSClass::directMethod(SEL selector) {
  auto found = std::ranges::find(_methods, selector, [](auto& m) { return m->selector; });
  return found == _methods.end() ? nullptr : found->get();
}

Method* NSClass::searchMethod(SEL selector) {
  std::lock_guard lock(runtimeLock());
  for (NSClass* c = this; c; c = c->_superclass)
    if (Method* method = c->directMethod(selector)) return method;
  return nullptr;
}

Method* NSClass::instanceMethod(SEL selector) {
  // Read before the search: what is added meanwhile makes the finding old.
  const std::uint64_t generation = tableGeneration.load(std::memory_order_acquire);
  Found& found = placeOf(this, selector);
  if (found.searched != this || found.selector != selector || found.generation != generation)
    found = {this, selector, generation, searchMethod(selector)};
  return found.method;
}

bool NSClass::addMethod(SEL selector, IMP implementation, std::string types) {
  auto* signature = NSMethodSignature::named(types);
  std::lock_guard lock(runtimeLock());
  if (directMethod(selector)) return false;
  _methods.push_back(
      std::make_unique<Method>(Method{selector, implementation, std::move(types), signature}));
  tableGeneration.fetch_add(1, std::memory_order_release);
  return true;
}

void NSClass::exchangeImplementations(Method* first, Method* second) {
  if (!first || !second) return;
  std::lock_guard lock(runtimeLock());
  const IMP earlier = first->implementation;
  std::atomic_ref(first->implementation).store(second->implementation, std::memory_order_release);
  std::atomic_ref(second->implementation).store(earlier, std::memory_order_release);
}

std::vector<SEL> NSClass::directSelectors() {
  std::lock_guard lock(runtimeLock());
  std::vector<SEL> result;
  for (auto& method : _methods) result.push_back(method->selector);
  return result;
}

}  // namespace kbx
