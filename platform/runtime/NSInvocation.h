// NSInvocation: a dynamic call as an object, with its arguments and its result.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/runtime/NSMethodSignature.h"

namespace kbx {

/// A call that is put together, made and asked for its result. Belongs to one thread at a time.
///
/// Values are copied from and to the addresses that are given, in the width of their type: BOOL is
/// a signed byte, objects are NSObject*, classes NSClass*, selectors SEL; object results go into a
/// Ref<NSObject>. An array is copied whole; one without a size, "[c]", up to the end of its text.
class KBX_PLATFORM NSInvocation final : public NSObject {
  KBX_OBJECT(NSInvocation, NSObject)
 public:
  /// All arguments zero. Raises NSInvalidArgumentException when the signature is absent.
  static Ref<NSInvocation> invocationWithMethodSignature(NSMethodSignature* signature);

  NSMethodSignature* methodSignature() const noexcept { return _signature; }
  /// Borrowed, as all arguments are, until retainArguments().
  NSObject* target() const;
  void setTarget(NSObject* target) { setArgument(&target, 0); }
  SEL selector() const;
  void setSelector(SEL selector) { setArgument(&selector, 1); }

  /// Copies a value from an address into the argument; 0 is the target, 1 the selector.
  /// (setArgument:atIndex:) Raises NSInvalidArgumentException for an absent address and where there
  /// is no such argument.
  void setArgument(const void* location, std::size_t index);
  /// The other way round. (getArgument:atIndex:)
  void getArgument(void* location, std::size_t index) const;

  /// Keeps the target and the object arguments, those that are set later too, and copies what C
  /// strings point to. (retainArguments)
  void retainArguments();
  bool argumentsRetained() const noexcept { return _retainsArguments; }

  /// Makes the call and keeps the result. (invoke)
  ///
  /// An absent target answers zero. Raises NSInvalidArgumentException when the target does not
  /// answer the selector, or answers it with other types than the signature's. Exceptions of the
  /// method pass, and the earlier result stays.
  void invoke();

  /// Copies the result of the last call to an address; zero before the first, nothing for void.
  /// (getReturnValue:)
  void getReturnValue(void* location) const;

 private:
  /// What an argument needs to stay what it is.
  struct Kept {
    Ref<NSObject> object;
    std::string text;
  };

  explicit NSInvocation(NSMethodSignature* signature);
  const ValueType& typeAt(std::size_t index, const void* location) const;
  std::byte* argumentAt(std::size_t index) const;
  void keep(std::size_t index);
  const Method* methodToCall(NSObject* target) const;

  // Most calls fit into this, so that an invocation is one block of memory.
  static constexpr std::size_t kPlainFrame = 128;
  static constexpr std::size_t kFewValues = 8;

  NSMethodSignature* const _signature;  // never freed
  alignas(std::max_align_t) std::byte _plain[kPlainFrame];
  std::vector<std::byte> _large;
  std::byte* const _frame;  // the arguments, then the result
  void* _fewValues[kFewValues];
  std::vector<void*> _manyValues;
  void** const _values;  // where the value of each argument is
  Ref<NSObject> _objectResult;
  bool _retainsArguments = false;
  std::vector<Kept> _kept;  // by argument, when there is something to keep
};

}  // namespace kbx
