// NSObject: the root class. Identity, reference count, class, description, value equality.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/Export.h"
#include "platform/objects/Ref.h"

namespace kbx {

class NSClass;
class NSString;
class SEL;

/// The root of every class. Objects live on the heap, start with one reference and die with the
/// last one. The count is atomic; everything else is as safe as the subclass says.
///
/// What an object holds dies with it, mostly at once. From a certain depth on it dies a little
/// later, before the outermost release() returns, so that a long chain does not exhaust the stack.
class KBX_PLATFORM NSObject {
 public:
  NSObject(const NSObject&) = delete;
  NSObject& operator=(const NSObject&) = delete;

  void retain() const noexcept { _references.fetch_add(1, std::memory_order_relaxed); }
  void release() const noexcept {
    if (_references.fetch_sub(1, std::memory_order_acq_rel) == 1) destroy();
  }
  /// Retains unless the last reference has gone. For tables that know objects without owning
  /// them: the destructor waits for the table's lock, so what is found there can be asked.
  bool retainIfAlive() const noexcept {
    auto count = _references.load(std::memory_order_relaxed);
    while (count != 0)
      if (_references.compare_exchange_weak(count, count + 1, std::memory_order_relaxed))
        return true;
    return false;
  }

  static NSClass* classObject();

  /// The class of which this object is an instance; for a class, its metaclass. Never absent.
  virtual NSClass* objectClass() const noexcept { return classObject(); }
  /// Whether this object is itself a class.
  virtual bool isClassObject() const noexcept { return false; }
  /// Whether the object is of a class or of a subclass of it. (isKindOfClass:)
  ///
  /// In the method table of the root class, so that what comes from another root can be told: it
  /// does not respond to the selector.
  bool isKindOfClass(const NSClass* wanted) const noexcept;
  /// Whether a dynamic call of `selector` finds a method. (respondsToSelector:)
  bool respondsToSelector(SEL selector) const;
  /// Whether the object's class, or the object when it is a class, adopts the protocol.
  bool conformsToProtocol(std::string_view protocol) const;

  /// Text for "%@". Never absent.
  virtual Ref<NSString> description() const;

  /// Value equality. The root class knows only identity; hash() agrees with it.
  virtual bool isEqual(NSObject* other) const { return this == other; }
  virtual std::size_t hash() const { return reinterpret_cast<std::uintptr_t>(this) >> 4; }

  /// An object with the same value that nobody can change: itself for immutable classes, a new
  /// object of the immutable class for mutable ones.
  virtual Ref<NSObject> copyObject() { return this; }

 protected:
  NSObject() noexcept = default;
  virtual ~NSObject();

 private:
  void destroy() const noexcept;

  mutable std::atomic<std::uint32_t> _references{1};
};

/// Identity. Two absent objects are the same.
inline bool isSame(const NSObject* a, const NSObject* b) noexcept { return a == b; }

/// Value equality. Absent equals nothing, not even absent, as in a message to no object.
inline bool isEqual(NSObject* a, NSObject* b) { return a && b && (a == b || a->isEqual(b)); }

/// The object as a T, or nullptr when it is absent or of another class.
template <std::derived_from<NSObject> T>
T* cast(NSObject* object) noexcept {
  return object && object->isKindOfClass(T::classObject()) ? static_cast<T*>(object) : nullptr;
}

}  // namespace kbx

/// Declares the class object of a C++ class; first line of the class body.
#define KBX_OBJECT(Type, Super)                                                   \
 public:                                                                          \
  using Superclass = Super;                                                       \
  static ::kbx::NSClass* classObject();                                           \
  ::kbx::NSClass* objectClass() const noexcept override { return classObject(); } \
                                                                                  \
 private:
