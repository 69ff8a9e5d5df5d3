#include "NSObject+KBXInvocations.h"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSException.h"
#include "platform/runtime/DynamicCalls.h"
#include "platform/runtime/FastEnumeration.h"

namespace kbx {
namespace {

constexpr std::size_t kFirstArgument = 2;  // behind the receiver and the selector

[[noreturn]] void raiseMissingAddress(const Method& method, std::size_t place) {
  raiseInvalidArgument(std::string("no address for argument ") + std::to_string(place) +
                       " of the method " + method.selector.name() + " of the types " +
                       method.types);
}

/// As many addresses as the method has arguments; the first may be that of `zero`.
std::vector<void*> addressesFor(const Method& method, std::size_t count, void* zero,
                                std::initializer_list<const void*> given) {
  std::vector<void*> addresses(count);
  for (std::size_t place = 0; place < count; ++place) {
    const void* address = place < given.size() ? given.begin()[place] : nullptr;
    if (!address && place > 0) raiseMissingAddress(method, place);
    addresses[place] = address ? const_cast<void*>(address) : zero;  // only read
  }
  return addresses;
}

[[noreturn]] void raiseMisfit(SEL selector, const char* what, const std::string& encoding) {
  raiseInvalidArgument(std::string("the ") + what + " of the method " + selector.name() +
                       " has the type " + encoding);
}

/// What is stored must fit where it goes; an object would need a handle there.
void requireFit(NSMethodSignature* signature, SEL selector, std::size_t resultSize,
                std::size_t argumentSize) {
  const ValueType& result = signature->result();
  if (resultSize && (result.size > resultSize || result.kind == ValueType::Kind::Object))
    raiseMisfit(selector, "result", result.encoding);
  if (!argumentSize || signature->numberOfArguments() <= kFirstArgument) return;
  const ValueType& argument = signature->arguments()[kFirstArgument];
  if (argument.size > argumentSize || argument.kind == ValueType::Kind::Array)
    raiseMisfit(selector, "argument", argument.encoding);
}

/// A call with at most one argument and plain values.
template <class Argument>
void perform(NSObject* object, SEL selector, void* result, std::size_t resultSize,
             const Argument* argument) {
  if (NSMethodSignature* signature = methodSignatureForSelector(object, selector))
    requireFit(signature, selector, resultSize, argument ? sizeof *argument : 0);
  kbxGetReturnValue(object, result, selector, {argument});
}

template <class Argument>
void performVoid(NSObject* object, SEL selector, Argument argument) {
  perform(object, selector, nullptr, 0, &argument);
}

}  // namespace

void kbxGetReturnValue(NSObject* object, void* returnValue, SEL selector,
                       std::initializer_list<const void*> argumentAddresses) {
  if (!object) return;
  const Method* method = object->objectClass()->instanceMethod(selector);
  if (!method) return doesNotRecognizeSelector(object, selector);
  const auto& types = signatureOf(*method)->arguments();
  const bool isFirstAbsent = types.size() > kFirstArgument &&
                             (argumentAddresses.size() == 0 || !*argumentAddresses.begin());
  std::vector<std::byte> zero(isFirstAbsent ? types[kFirstArgument].size + 1 : 0);
  const auto addresses =
      addressesFor(*method, types.size() - kFirstArgument, zero.data(), argumentAddresses);
  invoke(object, *method, returnValue, addresses);
}

bool kbxPerformBOOLSelector(NSObject* object, SEL selector) {
  signed char result = 0;
  perform<char>(object, selector, &result, sizeof result, nullptr);
  return result;
}

bool kbxPerformBOOLSelector(NSObject* object, SEL selector, NSObject* withObject) {
  signed char result = 0;
  perform(object, selector, &result, sizeof result, &withObject);
  return result;
}

std::uint32_t kbxPerformOSTypeSelector(NSObject* object, SEL selector) {
  std::uint32_t result = object ? kUninitializedOSType : 0;
  perform<char>(object, selector, &result, sizeof result, nullptr);
  return result;
}

void kbxPerformVoidSelectorWithBool(NSObject* object, SEL selector, bool withBool) {
  performVoid(object, selector, static_cast<signed char>(withBool));
}
void kbxPerformVoidSelectorWithOSType(NSObject* object, SEL selector, std::uint32_t withOSType) {
  performVoid(object, selector, withOSType);
}
void kbxPerformVoidSelectorWithLongLong(NSObject* object, SEL selector, std::int64_t withLongLong) {
  performVoid(object, selector, withLongLong);
}

void kbxDo(NSObject* object, SEL selector, NSObject* withEach) {
  if (!object) return;
  FastEnumeration members(withEach);
  while (auto member = members.next()) performSelector(object, selector, member);
}

Ref<NSArray> kbxCollect(NSObject* object, SEL selector, NSObject* withEach) {
  if (!object) return nullptr;
  FastEnumeration members(withEach);
  auto results = NSMutableArray::array();
  while (auto member = members.next())
    results->addObject(performSelector(object, selector, member));
  return results;
}

}  // namespace kbx
