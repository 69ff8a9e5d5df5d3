#include "platform/runtime/NSMethodSignature.h"

#include <ffi.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <mutex>
#include <unordered_map>

#include "platform/objects/NSException.h"

namespace kbx {

KBX_CLASS(NSMethodSignature)

/// What libffi needs for a call.
struct NSMethodSignature::Interface {
  std::vector<ffi_type*> forms;
  ffi_cif call;
};

namespace {

using Kind = ValueType::Kind;

/// Results up to this size need no room on the heap.
constexpr std::size_t kPlainResult = 64;

std::size_t aligned(std::size_t offset, std::size_t alignment) {
  return (offset + alignment - 1) / alignment * alignment;
}

/// Hands over what a call left in `room`, or drops it.
void storeResult(const ValueType& type, const std::byte* room, void* result) {
  if (type.kind == Kind::Object) {
    NSObject* object;
    std::memcpy(&object, room, sizeof object);
    auto owned = Ref<NSObject>::adopt(object);
    if (result) *static_cast<Ref<NSObject>*>(result) = std::move(owned);
    return;
  }
  if (!result) return;
  // libffi widens integers to a whole word, whose low end is the value.
  const bool isWidened = type.kind == Kind::Integer && type.size < sizeof(ffi_arg);
  const bool isAtEnd = isWidened && std::endian::native == std::endian::big;
  std::memcpy(result, room + (isAtEnd ? sizeof(ffi_arg) - type.size : 0), type.size);
}

}  // namespace

NSMethodSignature::NSMethodSignature(ValueType result, std::vector<ValueType> arguments)
    : _result(std::move(result)),
      _arguments(std::move(arguments)),
      _interface(std::make_unique<Interface>()) {
  std::size_t end = 0;
  const auto place = [&](const ValueType& type) {
    _offsets.push_back(aligned(end, type.alignment));
    end = _offsets.back() + type.size;
  };
  for (const ValueType& argument : _arguments) {
    _hasArrays |= argument.kind == Kind::Array;
    _interface->forms.push_back(argument.form);
    place(argument);
  }
  place(_result);
}

NSMethodSignature::~NSMethodSignature() = default;

NSMethodSignature* NSMethodSignature::make(std::string_view types) {
  auto result = takeValueType(types);
  if (!result || result->kind == Kind::Array) return nullptr;
  std::vector<ValueType> arguments;
  while (!types.empty()) {
    auto argument = takeValueType(types);
    if (!argument || argument->kind == Kind::Void) return nullptr;
    arguments.push_back(std::move(*argument));
  }
  if (arguments.size() < 2) return nullptr;
  if (arguments[0].kind != Kind::Object || arguments[1].encoding != ":") return nullptr;
  auto* made = new NSMethodSignature(std::move(*result), std::move(arguments));
  auto& [forms, call] = *made->_interface;
  if (ffi_prep_cif(&call, FFI_DEFAULT_ABI, static_cast<unsigned>(forms.size()), made->_result.form,
                   forms.data()) == FFI_OK)
    return made;
  made->release();
  return nullptr;
}

NSMethodSignature* NSMethodSignature::named(const std::string& types) {
  static auto* const lock = new std::mutex;
  static auto* const known = new std::unordered_map<std::string, NSMethodSignature*>;
  std::lock_guard guard(*lock);
  const auto [found, isNew] = known->try_emplace(types);
  if (isNew) found->second = make(types);
  return found->second;
}

NSMethodSignature* NSMethodSignature::signatureWithObjCTypes(const char* types) {
  if (!types) raiseInvalidArgument("+[NSMethodSignature signatureWithObjCTypes:]: no types");
  if (auto* signature = named(types)) return signature;
  raiseInvalidArgument("+[NSMethodSignature signatureWithObjCTypes:]: unsupported type encoding '" +
                       std::string(types) + "'");
}

const char* NSMethodSignature::getArgumentTypeAtIndex(std::size_t index) const {
  if (index < _arguments.size()) return _arguments[index].encoding.c_str();
  raiseInvalidArgument("-[NSMethodSignature getArgumentTypeAtIndex:]: index (" +
                       std::to_string(index) + ") out of bounds [0, " +
                       std::to_string(_arguments.size() - 1) + "]");
}

bool NSMethodSignature::isEqual(NSObject* other) const {
  auto* signature = cast<NSMethodSignature>(other);
  return signature && signature->_result.encoding == _result.encoding &&
         std::ranges::equal(signature->_arguments, _arguments, {}, &ValueType::encoding,
                            &ValueType::encoding);
}

std::size_t NSMethodSignature::hash() const { return _arguments.size(); }

/// As C does it: an array is passed as the address of its first element.
void NSMethodSignature::callDecayed(IMP body, void* room, void** values) const {
  std::vector<void*> addresses(values, values + _arguments.size());
  std::vector<void*> decayed(addresses);
  for (std::size_t i = 0; i < _arguments.size(); ++i)
    if (_arguments[i].kind == Kind::Array) decayed[i] = &addresses[i];
  ffi_call(&_interface->call, body, room, decayed.data());
}

void NSMethodSignature::call(IMP body, void* result, void** values) const {
  alignas(std::max_align_t) std::byte plain[kPlainResult];
  std::vector<std::byte> large(_result.size > kPlainResult ? _result.size : 0);
  std::byte* room = large.empty() ? plain : large.data();
  if (_hasArrays)
    callDecayed(body, room, values);
  else
    ffi_call(&_interface->call, body, room, values);
  storeResult(_result, room, result);
}

}  // namespace kbx
