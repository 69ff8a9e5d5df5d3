#include "platform/runtime/NSInvocation.h"

#include <cstdint>
#include <cstring>

#include "platform/objects/NSException.h"
#include "platform/runtime/DynamicCalls.h"

namespace kbx {

KBX_CLASS(NSInvocation)

namespace {

using Kind = ValueType::Kind;

bool isText(const ValueType& type) { return type.encoding == "*" || type.encoding == "r*"; }
/// Text that lies at the argument's address and ends with a zero.
bool isOpenArray(const ValueType& type) { return type.kind == Kind::Array && type.size == 0; }

/// Most values are a word, whose copy needs no call.
void copyValue(void* to, const void* from, std::size_t size) {
  if (size == sizeof(std::uint64_t))
    std::memcpy(to, from, sizeof(std::uint64_t));
  else
    std::memcpy(to, from, size);
}

template <class T>
T valueAt(const void* location) {
  T value;
  std::memcpy(static_cast<void*>(&value), location, sizeof value);
  return value;
}

}  // namespace

NSInvocation::NSInvocation(NSMethodSignature* signature)
    : _signature(signature),
      _large(signature->frameLength() > kPlainFrame ? signature->frameLength() : 0),
      _frame(_large.empty() ? _plain : _large.data()),
      _manyValues(signature->numberOfArguments() > kFewValues ? signature->numberOfArguments() : 0),
      _values(_manyValues.empty() ? _fewValues : _manyValues.data()) {
  static char none[] = "";
  std::memset(_frame, 0, signature->frameLength());
  const auto& types = signature->arguments();
  for (std::size_t i = 0; i < types.size(); ++i)
    _values[i] = isOpenArray(types[i]) ? static_cast<void*>(none) : argumentAt(i);
}

Ref<NSInvocation> NSInvocation::invocationWithMethodSignature(NSMethodSignature* signature) {
  if (!signature)
    raiseInvalidArgument(
        "+[NSInvocation invocationWithMethodSignature:]: method signature argument cannot be nil");
  return Ref<NSInvocation>::adopt(new NSInvocation(signature));
}

NSObject* NSInvocation::target() const { return valueAt<NSObject*>(argumentAt(0)); }
SEL NSInvocation::selector() const { return valueAt<SEL>(argumentAt(1)); }

std::byte* NSInvocation::argumentAt(std::size_t index) const {
  return _frame + _signature->offsetOfArgument(index);
}

/// The type of an argument that is set or asked for.
const ValueType& NSInvocation::typeAt(std::size_t index, const void* location) const {
  const std::size_t count = _signature->numberOfArguments();
  if (index >= count)
    raiseInvalidArgument("NSInvocation: index (" + std::to_string(index) + ") out of bounds [-1, " +
                         std::to_string(count - 1) + "]");
  if (!location) raiseInvalidArgument("NSInvocation: no address for an argument");
  return _signature->arguments()[index];
}

void NSInvocation::setArgument(const void* location, std::size_t index) {
  const ValueType& type = typeAt(index, location);
  if (isOpenArray(type)) {
    _kept.resize(_signature->numberOfArguments());
    _kept[index].text = static_cast<const char*>(location);
    _values[index] = _kept[index].text.data();
    return;
  }
  copyValue(argumentAt(index), location, type.size);
  if (_retainsArguments) keep(index);
}

void NSInvocation::getArgument(void* location, std::size_t index) const {
  const ValueType& type = typeAt(index, location);
  if (!isOpenArray(type)) {
    copyValue(location, argumentAt(index), type.size);
    return;
  }
  const auto* text = static_cast<const char*>(_values[index]);
  std::memcpy(location, text, std::strlen(text) + 1);
}

void NSInvocation::keep(std::size_t index) {
  const ValueType& type = _signature->arguments()[index];
  std::byte* argument = argumentAt(index);
  if (type.kind == Kind::Object) _kept[index].object = valueAt<NSObject*>(argument);
  if (!isText(type)) return;
  const char* text = valueAt<const char*>(argument);
  if (!text) return;
  _kept[index].text = text;
  const char* copy = _kept[index].text.c_str();
  std::memcpy(argument, &copy, sizeof copy);
}

void NSInvocation::retainArguments() {
  if (_retainsArguments) return;
  _retainsArguments = true;
  _kept.resize(_signature->numberOfArguments());
  for (std::size_t i = 0; i < _kept.size(); ++i) keep(i);
}

/// Absent when the target was told that it does not know the selector, and did not raise.
const Method* NSInvocation::methodToCall(NSObject* target) const {
  const SEL wanted = selector();
  const Method* method = target->objectClass()->instanceMethod(wanted);
  if (!method) {
    doesNotRecognizeSelector(target, wanted);
    return nullptr;
  }
  // Other types would read arguments that are not there.
  NSMethodSignature* signature = signatureOf(*method);
  if (signature != _signature && !signature->isEqual(_signature))
    raiseInvalidArgument(std::string("NSInvocation: the method ") + wanted.name() +
                         " has the types " + method->types + ", not those of the signature");
  return method;
}

void NSInvocation::invoke() {
  std::byte* result = _frame + _signature->offsetOfResult();
  const bool isObject = _signature->result().kind == Kind::Object;
  NSObject* receiver = target();
  if (const Method* method = receiver ? methodToCall(receiver) : nullptr)
    return _signature->call(implementationOf(*method),
                            isObject ? static_cast<void*>(&_objectResult) : result, _values);
  std::memset(result, 0, _signature->methodReturnLength());
  _objectResult = nullptr;
}

void NSInvocation::getReturnValue(void* location) const {
  if (!location) raiseInvalidArgument("-[NSInvocation getReturnValue:]: no address for the result");
  if (_signature->result().kind == Kind::Object)
    *static_cast<Ref<NSObject>*>(location) = _objectResult;
  else
    copyValue(location, _frame + _signature->offsetOfResult(), _signature->methodReturnLength());
}

}  // namespace kbx
