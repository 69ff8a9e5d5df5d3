#include "platform/runtime/DynamicCalls.h"

#include <algorithm>
#include <array>
#include <atomic>

#include "platform/objects/NSException.h"
#include "platform/objects/NSString.h"

namespace kbx {
namespace {

using Kind = ValueType::Kind;

constexpr std::size_t kBeforeArguments = 2;  // self and the selector
/// Calls with up to so many arguments take nothing from the heap.
constexpr std::size_t kFewValues = 12;

void raiseUnknown(NSObject* receiver, SEL selector) {
  raiseUnrecognizedSelector(receiver, selector.name());
}

[[maybe_unused]] const bool answersUnknownSelectors =
    addMethod<&raiseUnknown>(NSObject::classObject(), "doesNotRecognizeSelector:");

[[noreturn]] void raiseArgumentCount(const Method& method, std::size_t count) {
  raiseInvalidArgument(std::to_string(count) + " arguments for the method " +
                       method.selector.name() + " of the types " + method.types);
}

/// The method, or the receiver is told that there is none.
Method* methodFor(NSObject* receiver, SEL selector) {
  Method* method = receiver->objectClass()->instanceMethod(selector);
  if (!method) doesNotRecognizeSelector(receiver, selector);
  return method;
}

Ref<NSObject> objectFrom(NSObject* receiver, const Method& method,
                         std::span<void* const> arguments) {
  const ValueType& type = signatureOf(method)->result();
  if (type.encoding == "#") {
    NSClass* result = nullptr;
    invoke(receiver, method, &result, arguments);
    return result;
  }
  Ref<NSObject> result;
  invoke(receiver, method, type.kind == Kind::Object ? &result : nullptr, arguments);
  return result;
}

}  // namespace

NSClass* NSClassFromString(NSString* name) {
  auto text = name ? name->UTF8String() : std::nullopt;
  return text ? NSClass::named(*text) : nullptr;
}

Ref<NSString> NSStringFromSelector(SEL selector) {
  return NSString::stringWithUTF8String(selector.name());
}

IMP implementationOf(const Method& method) {
  // The table holds no constant methods; an atomic_ref cannot be made of one that looks so.
  return std::atomic_ref(const_cast<IMP&>(method.implementation)).load(std::memory_order_acquire);
}

NSMethodSignature* signatureOf(const Method& method) {
  auto* signature = method.signature ? method.signature : NSMethodSignature::named(method.types);
  if (signature) return signature;
  raiseInvalidArgument(std::string("the method ") + method.selector.name() + " has the types " +
                       method.types + ", which no dynamic call can pass");
}

NSMethodSignature* methodSignatureForSelector(NSObject* receiver, SEL selector) {
  Method* method = receiver ? receiver->objectClass()->instanceMethod(selector) : nullptr;
  return method ? signatureOf(*method) : nullptr;
}

void doesNotRecognizeSelector(NSObject* receiver, SEL selector) {
  static const SEL question("doesNotRecognizeSelector:");
  Method* method = receiver->objectClass()->instanceMethod(question);
  if (!method) raiseUnrecognizedSelector(receiver, selector.name());
  void* const arguments[] = {&selector};
  invoke(receiver, *method, nullptr, arguments);
}

void invoke(NSObject* self, const Method& method, void* result, std::span<void* const> arguments) {
  const NSMethodSignature* signature = signatureOf(method);
  const std::size_t count = signature->numberOfArguments();
  if (count != arguments.size() + kBeforeArguments) raiseArgumentCount(method, arguments.size());
  SEL selector = method.selector;
  std::array<void*, kFewValues> few;
  std::vector<void*> many(count > few.size() ? count : 0);
  void** values = many.empty() ? few.data() : many.data();
  values[0] = &self;
  values[1] = &selector;
  std::ranges::copy(arguments, values + kBeforeArguments);
  signature->call(implementationOf(method), result, values);
}

Ref<NSObject> performSelector(NSObject* receiver, SEL selector) {
  Method* method = receiver ? methodFor(receiver, selector) : nullptr;
  return method ? objectFrom(receiver, *method, {}) : nullptr;
}

Ref<NSObject> performSelector(NSObject* receiver, SEL selector, NSObject* argument) {
  Method* method = receiver ? methodFor(receiver, selector) : nullptr;
  if (!method) return nullptr;
  const auto& types = signatureOf(*method)->arguments();
  if (types.size() == kBeforeArguments) return objectFrom(receiver, *method, {});
  const auto& type = types[kBeforeArguments];
  const bool isClass = type.encoding == "#" && (!argument || argument->isClassObject());
  if (types.size() > kBeforeArguments + 1 || (type.kind != Kind::Object && !isClass))
    raiseInvalidArgument(std::string("the method ") + method->selector.name() + " of the types " +
                         method->types + " does not take one object");
  void* const arguments[] = {&argument};
  return objectFrom(receiver, *method, arguments);
}

}  // namespace kbx
