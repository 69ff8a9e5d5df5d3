#include "platform/objects/NSException.h"

#include <cstdio>

#include "platform/objects/NSClass.h"
#include "platform/text/Format.h"

namespace kbx {

KBX_CLASS(NSException)

NSException::NSException(NSString* name, NSString* reason, NSDictionary* userInfo)
    : _name(name), _reason(reason), _userInfo(userInfo ? userInfo->copy() : nullptr) {}

NSException::~NSException() = default;

Ref<NSException> NSException::exceptionWithName(NSString* name, NSString* reason,
                                                NSDictionary* userInfo) {
  return Ref<NSException>::adopt(new NSException(name, reason, userInfo));
}

void NSException::raise() { throw Raised(this); }

Ref<NSString> NSException::description() const {
  if (auto text = reason()) return text;
  return descriptionOf(_name);
}

Raised::Raised(NSException* exception)
    : _exception(exception),
      _text(std::make_shared<const std::string>(descriptionOf(exception->name())->lossyUTF8() +
                                                ": " + descriptionOf(exception)->lossyUTF8())) {}
Raised::Raised(const Raised&) noexcept = default;
Raised::~Raised() = default;

const char* Raised::what() const noexcept { return _text->c_str(); }

void raiseUnrecognizedSelector(NSObject* receiver, const char* selector) {
  char address[32];
  std::snprintf(address, sizeof address, "%p", static_cast<void*>(receiver));
  auto* receiverClass = cast<NSClass>(receiver);
  const auto& name = receiverClass ? receiverClass->name() : receiver->objectClass()->name();
  raiseInvalidArgument((receiverClass ? "+[" : "-[") + name + " " +
                       (selector ? selector : "(null)") + "]: unrecognized selector sent to " +
                       (receiverClass ? "class " : "instance ") + address);
}

void raiseInvalidArgument(std::string_view reason) {
  NSException::exceptionWithName(NSInvalidArgumentException(),
                                 NSString::stringWithLossyUTF8(reason), nullptr)
      ->raise();
}

void raiseRange(std::string_view reason) {
  NSException::exceptionWithName(NSRangeException(), NSString::stringWithLossyUTF8(reason), nullptr)
      ->raise();
}

}  // namespace kbx
