// NSException, and Raised, the C++ exception that carries one.
#pragma once

#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"

namespace kbx {

inline NSString* NSInvalidArgumentException() { return "NSInvalidArgumentException"_ns; }
inline NSString* NSRangeException() { return "NSRangeException"_ns; }
inline NSString* NSInternalInconsistencyException() {
  return "NSInternalInconsistencyException"_ns;
}

/// The platform's exception class: a name, a reason and user info, each of which may be absent.
class KBX_PLATFORM NSException : public NSObject {
  KBX_OBJECT(NSException, NSObject)
 public:
  static Ref<NSException> exceptionWithName(NSString* name, NSString* reason,
                                            NSDictionary* userInfo);

  NSString* name() const noexcept { return _name; }
  /// Subclasses may add to what was given.
  virtual Ref<NSString> reason() const { return _reason; }
  NSDictionary* userInfo() const noexcept { return _userInfo; }
  /// Throws a Raised that keeps this exception. (raise)
  [[noreturn]] void raise();

  /// The reason, or the name where there is none.
  Ref<NSString> description() const override;

 protected:
  NSException(NSString* name, NSString* reason, NSDictionary* userInfo);
  ~NSException() override;

 private:
  const Ref<NSString> _name;
  const Ref<NSString> _reason;
  const Ref<NSDictionary> _userInfo;
};

/// What raise() throws, for NSException and every subclass: `catch (const Raised&)` is "an
/// exception of the platform's exception class"; any other C++ exception passes through it.
class KBX_PLATFORM Raised final : public std::exception {
 public:
  explicit Raised(NSException* exception);
  Raised(const Raised&) noexcept;
  ~Raised() override;
  NSException* exception() const noexcept { return _exception; }
  /// The exception's name and reason as UTF-8, for handlers that know nothing of objects.
  const char* what() const noexcept override;

 private:
  Ref<NSException> _exception;
  std::shared_ptr<const std::string> _text;  // shared, because a copy must not fail
};

/// Raises the exception of a dynamic call that finds no method: NSInvalidArgumentException with
/// "-[NSNumber length]: unrecognized selector sent to instance 0x…".
[[noreturn]] KBX_PLATFORM void raiseUnrecognizedSelector(NSObject* receiver, const char* selector);

/// Raises NSInvalidArgumentException or NSRangeException with a UTF-8 reason.
[[noreturn]] KBX_PLATFORM void raiseInvalidArgument(std::string_view reason);
[[noreturn]] KBX_PLATFORM void raiseRange(std::string_view reason);

}  // namespace kbx
