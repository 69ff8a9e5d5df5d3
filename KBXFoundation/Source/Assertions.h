// Preconditions and assertions: the forms in which the library tells programming errors.
//
// Each takes the place that is published for it, a Site. What fails is logged and raised as
// "KBXAssertionFailedException" (KBXFunctions); never use them for what a file or a user can
// cause.
#pragma once

#include "platform/objects/NSClass.h"
#include "platform/text/Format.h"

namespace kbx {

/// The published place of an assertion. Its texts and numbers are part of the result; they are not
/// positions in this source tree.
struct Site {
  const char* file;      // "KBXFoundation/Source/KBXEMLXFile"
  unsigned long line;    // 14
  NSObject* object;      // the receiver, or its class in a class method; absent in a function
  const char* selector;  // "initWithMessageData:properties:"; nullptr in a function
  const char* function;  // its full signature; nullptr: made of the object and the selector

  constexpr Site(const char* siteFile, unsigned long siteLine, NSObject* receiver,
                 const char* selectorName, const char* signature = nullptr)
      : file(siteFile),
        line(siteLine),
        object(receiver),
        selector(selectorName),
        function(signature) {}

  /// In a free function.
  constexpr Site(const char* siteFile, unsigned long siteLine, const char* signature)
      : Site(siteFile, siteLine, nullptr, nullptr, signature) {}
};

/// Logs and raises a message for a failed assertion of the site
/// (KBXFunctions::assertionFailedForFile).
void failAssertion(const Site& site, NSString* message);

/// Ends the process as the C library does for a failed assertion, with one line on standard error:
/// "Assertion failed: CONDITION, function FUNCTION, file FILE, line LINE.". The last line of
/// defence, for the day on which raising returns.
[[noreturn]] void stopAfterAssertion(const Site& site, const char* condition);

/// Fails the platform's own parameter assertion, "Invalid parameter not satisfying: CONDITION": in
/// the method form where the site has a selector, else in the function form.
[[noreturn]] void failParameterAssertion(const Site& site, const char* condition);

}  // namespace kbx

/// Raises "Precondition Failed: TEXT" unless the condition holds. The site comes last; it may hold
/// commas.
#define KBX_PRECONDITION_TEXT(condition, text, ...)            \
  KBX_ASSERTION_FORM(condition, "((" text "))", (__VA_ARGS__), \
                     ::kbx::NSString::constant("Precondition Failed: %s"), text)

/// The same, where the condition's C++ text is the published one.
#define KBX_PRECONDITION(condition, ...) KBX_PRECONDITION_TEXT(condition, #condition, __VA_ARGS__)

/// Raises "Assertion Failed: TEXT" unless the condition holds.
#define KBX_ASSERT_TEXT(condition, text, ...)                  \
  KBX_ASSERTION_FORM(condition, "((" text "))", (__VA_ARGS__), \
                     ::kbx::NSString::constant("Assertion Failed: %s"), text)

/// The same, where the condition's C++ text is the published one.
#define KBX_ASSERT(condition, ...) KBX_ASSERT_TEXT(condition, #condition, __VA_ARGS__)

/// Raises a message of its own, a format string with its arguments, unless the condition holds.
/// The site stands in parentheses where it holds commas of its own.
#define KBX_ASSERT_MESSAGE(condition, text, site, ...) \
  KBX_ASSERTION_FORM(condition, "(" text ")", (site), __VA_ARGS__)

/// Raises the platform's "Invalid parameter not satisfying: TEXT" unless the condition holds.
#define KBX_PARAMETER_ASSERT(condition, text, ...)                        \
  do {                                                                    \
    if (!(condition)) ::kbx::failParameterAssertion((__VA_ARGS__), text); \
  } while (false)

// What the forms have in common: raise, and stop should raising return to a condition that still
// does not hold. The text of the check stands in parentheses, two pairs or one.
#define KBX_ASSERTION_FORM(condition, parenthesized, site, ...)         \
  do {                                                                  \
    if (!(condition)) {                                                 \
      ::kbx::failAssertion(site, ::kbx::stringWithFormat(__VA_ARGS__)); \
      if (!(condition)) ::kbx::stopAfterAssertion(site, parenthesized); \
    }                                                                   \
  } while (false)
