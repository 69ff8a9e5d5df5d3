// NSAssertionHandler: what the platform's own assertions do when they fail.
#pragma once

#include <cstdint>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSString.h"
#include "platform/text/Format.h"

namespace kbx {

/// Logs failed assertions and raises NSInternalInconsistencyException. Safe from any thread.
class KBX_PLATFORM NSAssertionHandler final : public NSObject {
  KBX_OBJECT(NSAssertionHandler, NSObject)
 public:
  /// The one handler of the process, never freed. (currentHandler)
  static NSAssertionHandler* currentHandler();

  /// Never returns: raises with the filled-in description as the reason, after a line in the
  /// classic log, "*** Assertion failure in -[Class method], file:line".
  /// (handleFailureInMethod:object:file:lineNumber:description:)
  ///
  /// object  whose method failed; absent prints "(null)"
  template <class... Arguments>
  [[noreturn]] void handleFailureInMethod(SEL selector, NSObject* object, NSString* file,
                                          std::int64_t lineNumber, NSString* description,
                                          const Arguments&... arguments) {
    failInMethod(selector, object, file, lineNumber, stringWithFormat(description, arguments...));
  }

  /// The same for a function: "*** Assertion failure in function, file:line".
  /// (handleFailureInFunction:file:lineNumber:description:)
  template <class... Arguments>
  [[noreturn]] void handleFailureInFunction(NSString* function, NSString* file,
                                            std::int64_t lineNumber, NSString* description,
                                            const Arguments&... arguments) {
    failInFunction(function, file, lineNumber, stringWithFormat(description, arguments...));
  }

 private:
  NSAssertionHandler() = default;
  [[noreturn]] void failInMethod(SEL selector, NSObject* object, NSString* file,
                                 std::int64_t lineNumber, NSString* reason);
  [[noreturn]] void failInFunction(NSString* function, NSString* file, std::int64_t lineNumber,
                                   NSString* reason);
};

/// Fails a parameter assertion in a method: "Invalid parameter not satisfying: CONDITION".
///
/// file       UTF-8; null or malformed stands as "<Unknown File>"
/// condition  the text of what did not hold, UTF-8, required
[[noreturn]] KBX_PLATFORM void failParameterInMethod(SEL selector, NSObject* object,
                                                     const char* file, std::int64_t lineNumber,
                                                     const char* condition);

/// The same in a function; a name that is null or malformed stands as "<Unknown Function>".
[[noreturn]] KBX_PLATFORM void failParameterInFunction(const char* function, const char* file,
                                                       std::int64_t lineNumber,
                                                       const char* condition);

}  // namespace kbx
