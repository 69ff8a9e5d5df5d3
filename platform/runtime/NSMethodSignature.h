// NSMethodSignature: the types of a method's result and arguments.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/objects/NSClass.h"
#include "platform/runtime/ValueType.h"

namespace kbx {

/// The types of a method, read once: signatures of the same types are the same object, which is
/// never freed. Immutable and safe from any thread.
class KBX_PLATFORM NSMethodSignature final : public NSObject {
  KBX_OBJECT(NSMethodSignature, NSObject)
 public:
  /// The signature of type encodings such as "c@:@", with or without frame offsets.
  /// (signatureWithObjCTypes:)
  ///
  /// Raises NSInvalidArgumentException for an absent text and for one that cannot be read; what can
  /// be is told at takeValueType(). Results may not be arrays.
  static NSMethodSignature* signatureWithObjCTypes(const char* types);
  /// The same, but absent where the types cannot be read.
  static NSMethodSignature* named(const std::string& types);

  /// The receiver and the selector are the first two.
  std::size_t numberOfArguments() const noexcept { return _arguments.size(); }
  /// Raises NSInvalidArgumentException when there is no such argument. (getArgumentTypeAtIndex:)
  const char* getArgumentTypeAtIndex(std::size_t index) const;
  const char* methodReturnType() const noexcept { return _result.encoding.c_str(); }
  /// In bytes; 0 for void.
  std::size_t methodReturnLength() const noexcept { return _result.size; }

  const ValueType& result() const noexcept { return _result; }
  const std::vector<ValueType>& arguments() const noexcept { return _arguments; }
  /// Where an argument lies in a block of memory that holds all of them; behind the last one, where
  /// the result does.
  std::size_t offsetOfArgument(std::size_t index) const noexcept { return _offsets[index]; }
  std::size_t offsetOfResult() const noexcept { return _offsets.back(); }
  std::size_t frameLength() const noexcept { return _offsets.back() + _result.size; }
  /// Whether results and arguments are the same, type by type.
  bool isEqual(NSObject* other) const override;
  std::size_t hash() const override;

  /// Calls a body of these types.
  ///
  /// result  where to store the result, or nullptr; an object result is stored into the
  ///         Ref<NSObject> found there
  /// values  the address of each argument's value, as many as there are arguments; of an array,
  ///         the address that the body gets
  void call(IMP body, void* result, void** values) const;

 private:
  struct Interface;
  NSMethodSignature(ValueType result, std::vector<ValueType> arguments);
  ~NSMethodSignature() override;
  static NSMethodSignature* make(std::string_view types);
  void callDecayed(IMP body, void* room, void** values) const;

  const ValueType _result;
  const std::vector<ValueType> _arguments;
  std::vector<std::size_t> _offsets;
  bool _hasArrays = false;
  std::unique_ptr<Interface> _interface;
};

}  // namespace kbx
