// AttributeMatcher: whether a message's attributes are as a query wants them.
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "host/search/Query.h"
#include "host/search/TextPattern.h"
#include "platform/objects/NSDictionary.h"

namespace kbx {

/// Seconds from 1970 to 2001, from which plain numbers count times.
inline constexpr double kReferenceDate = 978307200;

/// Looks at one attribute, or at all. Never changes after it is made.
///
/// A list matches when one of its elements does. Texts compare with texts by the pattern, with
/// numbers by their description; booleans with 1 and 0, true and false, yes and no; dates with
/// times and with numbers, which count from 2001. < and > know numbers and dates only. What cannot
/// be compared, and what is not there, does not match.
class AttributeMatcher {
 public:
  explicit AttributeMatcher(AttributeTest test);

  bool matches(NSDictionary* attributes) const;
  /// Whether an attribute that is this text matches.
  bool matchesText(std::string_view utf8) const;
  const AttributeTest& test() const { return _test; }

 private:
  bool matchesValue(NSObject* value) const;
  bool matchesElement(NSObject* element) const;
  bool comparesTexts() const;
  bool matchesNumber(double number) const;

  const AttributeTest _test;
  const TextPattern _pattern;
  std::optional<double> _number, _upper;  // what the values are as numbers, if they are
};

std::unique_ptr<AttributeMatcher> makeAttributeMatcher(const AttributeTest& test);

}  // namespace kbx
