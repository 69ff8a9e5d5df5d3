#include "platform/text/DisplayOrder.h"

#include <unicode/ucol.h>

#include <limits>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "platform/system/Environment.h"
#include "platform/text/ASCIIDisplayOrder.h"

namespace kbx {
namespace {

UCollator* openCollator(const std::string& locale) {
  for (const char* name : {locale.c_str(), ""}) {
    UErrorCode status = U_ZERO_ERROR;
    UCollator* collator = ucol_open(name, &status);
    if (U_SUCCESS(status)) return collator;
  }
  throw std::runtime_error("the collation library has no data");
}

/// Whether the language leaves the common order alone.
bool hasUsualOrder(const std::string& locale) {
  if (locale.empty()) return true;
  UCollator* const collator = openCollator(locale);
  std::int32_t length = 0;
  ucol_getRules(collator, &length);
  ucol_close(collator);
  return length == 0;
}

UCollator* makeCollator(const std::string& locale, bool ignoresCase, bool isNumeric) {
  UCollator* const collator = openCollator(locale);
  UErrorCode status = U_ZERO_ERROR;
  ucol_setStrength(collator, ignoresCase ? UCOL_SECONDARY : UCOL_TERTIARY);
  ucol_setAttribute(collator, UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
  ucol_setAttribute(collator, UCOL_NUMERIC_COLLATION, isNumeric ? UCOL_ON : UCOL_OFF, &status);
  return collator;
}

/// A text as the collation library takes it; only ASCII is copied.
class UnitsOf {
 public:
  explicit UnitsOf(const NSString* text) {
    text->visitUnits([this](auto units) {
      if constexpr (sizeof(units[0]) == sizeof(char16_t))
        _units = {units.data(), units.size()};
      else
        _units = _copy.assign(units.begin(), units.end());
    });
    if (_units.size() > std::numeric_limits<std::int32_t>::max())
      throw std::length_error("a text of this length has no place in an order");
  }
  UnitsOf(const UnitsOf&) = delete;
  UnitsOf& operator=(const UnitsOf&) = delete;

  const char16_t* data() const { return _units.data(); }
  std::int32_t size() const { return static_cast<std::int32_t>(_units.size()); }

 private:
  std::u16string _copy;
  std::u16string_view _units;
};

}  // namespace

DisplayOrder::DisplayOrder(std::string locale)
    : _locale(std::move(locale)), _hasUsualASCIIOrder(hasUsualOrder(_locale)) {}

DisplayOrder::~DisplayOrder() {
  for (Collator& collator : _collators)
    if (collator.made) ucol_close(collator.made);
}

const DisplayOrder& DisplayOrder::current() {
  static auto* const order = new DisplayOrder(collationLocale(Environment::current()));
  return *order;
}

const UCollator* DisplayOrder::collator(bool ignoresCase, bool isNumeric) const {
  Collator& collator = _collators[(ignoresCase ? 2 : 0) + (isNumeric ? 1 : 0)];
  std::call_once(collator.isMade,
                 [&] { collator.made = makeCollator(_locale, ignoresCase, isNumeric); });
  return collator.made;
}

NSComparisonResult DisplayOrder::compare(const NSString* a, const NSString* b,
                                         NSStringCompareOptions options) const {
  const bool ignoresCase = options & NSCaseInsensitiveSearch, isNumeric = options & NSNumericSearch;
  if (ignoresCase && _hasUsualASCIIOrder && a->isASCII() && b->isASCII())
    return compareASCIIForDisplay(a, b, isNumeric);
  const UnitsOf mine(a), theirs(b);
  return static_cast<NSComparisonResult>(ucol_strcoll(collator(ignoresCase, isNumeric), mine.data(),
                                                      mine.size(), theirs.data(), theirs.size()));
}

std::string collationLocale(Environment& environment) {
  const std::vector<std::string> variables = environment.variables();
  for (std::string_view name : {"LC_ALL=", "LC_COLLATE=", "LANG="}) {
    for (std::string_view variable : variables) {
      if (!variable.starts_with(name) || variable.size() == name.size()) continue;
      const std::string_view value = variable.substr(name.size());
      const std::string_view locale = value.substr(0, value.find_first_of(".@"));
      return locale == "C" || locale == "POSIX" ? "" : std::string(locale);
    }
  }
  return {};
}

}  // namespace kbx
