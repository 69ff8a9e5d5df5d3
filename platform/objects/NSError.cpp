#include "platform/objects/NSError.h"

#include "platform/objects/Description.h"
#include "platform/objects/Equality.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/system/SystemMessages.h"
#include "platform/text/Format.h"
#include "platform/text/StringBuilder.h"

namespace kbx {

KBX_CLASS(NSError)
KBX_ADOPTS(NSError, NSCoding)

namespace {

// What its sentences take to put together, in the units of a description's budget.
constexpr std::size_t kWorkOfError = 1024;

/// The words for a failure with a file: a sentence, and the end of "… couldn’t be opened because".
struct FileFailure {
  std::int64_t code;
  const char* reason;
  const char* because;
};

constexpr FileFailure kFileFailures[] = {
    {NSFileNoSuchFileError, "There is no such file or folder.", "there is no such file or folder"},
    {NSFileReadNoPermissionError, "You don’t have permission.", "you don’t have permission"},
    {NSFileReadCorruptFileError, "The file isn’t in the correct format.",
     "it isn’t in the correct format"},
    {NSFileReadNoSuchFileError, "The file doesn’t exist.", "there is no such file"},
    {NSFileReadTooLargeError, "The file is too large.", "it is too large"},
    {NSFileReadUnknownStringEncodingError, "The text encoding can’t be determined.",
     "its text encoding can’t be determined"},
    {NSFileWriteNoPermissionError, "You don’t have permission.", "you don’t have permission"},
    {NSFileWriteFileExistsError, "A file with that name exists already.",
     "a file with that name exists already"},
    {NSFileWriteOutOfSpaceError, "There isn’t enough space.", "there isn’t enough space"},
    {NSFileWriteVolumeReadOnlyError, "The volume is read only.", "the volume is read only"},
};

const FileFailure* fileFailure(const NSError& error) {
  if (!isEqual(error.domain(), NSCocoaErrorDomain())) return nullptr;
  for (const auto& failure : kFileFailures)
    if (failure.code == error.code()) return &failure;
  return nullptr;
}

const char* actionOf(const NSError& error) {
  if (error.userInfo()->objectForKey(NSUserStringVariantErrorKey())) return "removed";
  return error.code() >= 256 && error.code() < 512 ? "opened" : "saved";
}
bool isFileCode(std::int64_t code) { return code == 4 || (code >= 256 && code < 1024); }

/// The reason of an error without one of its own; absent where nothing is known of the code.
Ref<NSString> knownReason(const NSError& error) {
  if (isEqual(error.domain(), NSPOSIXErrorDomain()))
    return NSString::stringWithLossyUTF8(systemMessage(error.code()));
  const FileFailure* failure = fileFailure(error);
  return failure ? NSString::stringWithUTF8(failure->reason) : nullptr;
}

/// A sentence about a file of the Cocoa domain; absent for every other error.
Ref<NSString> fileSentence(const NSError& error) {
  auto* path = cast<NSString>(error.userInfo()->objectForKey(NSFilePathErrorKey()));
  if (!path || !isFileCode(error.code()) || !isEqual(error.domain(), NSCocoaErrorDomain()))
    return nullptr;
  Ref<NSString> start = stringWithFormat("The file “%@” couldn’t be %s"_ns,
                                         path->lastPathComponent(), actionOf(error));
  if (const FileFailure* failure = fileFailure(error))
    return stringWithFormat("%@ because %s."_ns, start, failure->because);
  auto* cause = cast<NSError>(error.userInfo()->objectForKey(NSUnderlyingErrorKey()));
  Ref<NSString> reason = cause ? cause->localizedFailureReason() : nullptr;
  return reason ? stringWithFormat("%@: %@."_ns, start, reason) : stringWithFormat("%@."_ns, start);
}

}  // namespace

NSError::NSError(NSString* domain, std::int64_t code, Ref<NSDictionary> userInfo)
    : _domain(domain), _code(code), _userInfo(std::move(userInfo)) {}

Ref<NSError> NSError::errorWithDomain(NSString* domain, std::int64_t code, NSDictionary* userInfo) {
  if (!domain) raiseInvalidArgument("-[NSError initWithDomain:code:userInfo:]: nil domain");
  return Ref<NSError>::adopt(
      new NSError(domain, code, userInfo ? userInfo->copy() : NSDictionary::dictionary()));
}

Ref<NSString> NSError::localizedDescription() const {
  if (auto* text = cast<NSString>(_userInfo->objectForKey(NSLocalizedDescriptionKey())))
    return text;
  if (auto reason = cast<NSString>(_userInfo->objectForKey(NSLocalizedFailureReasonErrorKey())))
    return stringWithFormat("The operation couldn’t be completed. %@"_ns, reason);
  if (auto sentence = fileSentence(*this)) return sentence;
  if (auto reason = localizedFailureReason())
    return stringWithFormat("The operation couldn’t be completed. %@"_ns, reason);
  return stringWithFormat("The operation couldn’t be completed. (%@ error %ld.)"_ns, _domain,
                          _code);
}

Ref<NSString> NSError::localizedFailureReason() const {
  auto* text = cast<NSString>(_userInfo->objectForKey(NSLocalizedFailureReasonErrorKey()));
  return text ? Ref<NSString>(text) : knownReason(*this);
}

Ref<NSString> NSError::localizedRecoverySuggestion() const {
  return cast<NSString>(_userInfo->objectForKey(NSLocalizedRecoverySuggestionErrorKey()));
}

Ref<NSString> NSError::description() const {
  const DescriptionBudget budget;
  budget.spend(kWorkOfError);
  Ref<NSString> head = stringWithFormat("Error Domain=%@ Code=%ld \"%@\""_ns, _domain, _code,
                                        localizedDescription());
  if (_userInfo->count() == 0) return head;
  StringBuilder text;
  text.append(head).append(" UserInfo={");
  bool isFirst = true;
  for (const auto& [key, value] : *_userInfo) {
    if (!isFirst) text.append(", ");
    if (endsHere(text, budget)) break;
    text.append(descriptionOf(key)).append("=").append(descriptionOf(value));
    isFirst = false;
  }
  return text.append("}").take();
}

bool NSError::isEqual(NSObject* other) const {
  return areEqualContainers(const_cast<NSError*>(this), other);
}

std::size_t NSError::hash() const { return _domain->hash() ^ static_cast<std::size_t>(_code); }

Ref<NSError> posixError(int number) {
  return NSError::errorWithDomain(NSPOSIXErrorDomain(), number, nullptr);
}

}  // namespace kbx
