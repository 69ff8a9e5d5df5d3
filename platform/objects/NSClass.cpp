#include "platform/objects/NSClass.h"

#include <ffi.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <set>
#include <unordered_map>

#include "platform/objects/NSException.h"
#include "platform/objects/NSString.h"

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

/// The body at this moment: another thread may be exchanging it.
IMP implementationOf(const Method& method) {
  std::lock_guard lock(runtimeLock());
  return method.implementation;
}

ffi_type* ffiType(char encoding) {
  switch (encoding) {
    case 'v':
      return &ffi_type_void;
    case 'c':
      return &ffi_type_sint8;
    case 'i':
      return &ffi_type_sint32;
    case 'I':
      return &ffi_type_uint32;
    case 'q':
      return &ffi_type_sint64;
    case 'Q':
      return &ffi_type_uint64;
    case 'd':
      return &ffi_type_double;
    default:
      return &ffi_type_pointer;
  }
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

Method* NSClass::instanceMethod(SEL selector) {
  std::lock_guard lock(runtimeLock());
  for (NSClass* c = this; c; c = c->_superclass)
    if (Method* method = c->directMethod(selector)) return method;
  return nullptr;
}

bool NSClass::addMethod(SEL selector, IMP implementation, std::string types) {
  std::lock_guard lock(runtimeLock());
  if (directMethod(selector)) return false;
  _methods.push_back(std::make_unique<Method>(Method{selector, implementation, std::move(types)}));
  return true;
}

void NSClass::exchangeImplementations(Method* first, Method* second) {
  if (!first || !second) return;
  std::lock_guard lock(runtimeLock());
  std::swap(first->implementation, second->implementation);
}

std::vector<SEL> NSClass::directSelectors() {
  std::lock_guard lock(runtimeLock());
  std::vector<SEL> result;
  for (auto& method : _methods) result.push_back(method->selector);
  return result;
}

void invoke(NSObject* self, const Method& method, void* result, std::span<void* const> arguments) {
  constexpr std::size_t kBeforeArguments = 3;  // the result, self and the selector
  if (method.types.size() != arguments.size() + kBeforeArguments)
    raiseInvalidArgument(std::to_string(arguments.size()) + " arguments for the method " +
                         method.selector.name() + " of the types " + method.types);
  SEL selector = method.selector;
  std::vector<void*> values{&self, &selector};
  values.insert(values.end(), arguments.begin(), arguments.end());
  std::vector<ffi_type*> types;
  for (std::size_t i = 1; i < method.types.size(); ++i) types.push_back(ffiType(method.types[i]));

  // libffi widens integer results to a whole ffi_arg, so the result never goes straight to the
  // caller's buffer.
  union {
    ffi_arg word;
    double real;
    NSObject* object;
  } returned{};
  ffi_cif cif;
  if (ffi_prep_cif(&cif, FFI_DEFAULT_ABI, static_cast<unsigned>(types.size()),
                   ffiType(method.types[0]), types.data()) != FFI_OK)
    std::terminate();
  ffi_call(&cif, implementationOf(method), &returned, values.data());

  if (method.types[0] == '@') {
    auto object = Ref<NSObject>::adopt(returned.object);
    if (result) *static_cast<Ref<NSObject>*>(result) = std::move(object);
  } else if (result && method.types[0] != 'v') {
    std::memcpy(result, &returned, ffiType(method.types[0])->size);  // little-endian
  }
}

Ref<NSObject> performSelector(NSObject* receiver, SEL selector) {
  if (!receiver) return nullptr;
  Method* method = receiver->objectClass()->instanceMethod(selector);
  if (!method) raiseUnrecognizedSelector(receiver, selector.name());
  Ref<NSObject> result;
  invoke(receiver, *method, method->types.starts_with('@') ? &result : nullptr, {});
  return result;
}

}  // namespace kbx
