// NSString: small letters, and ends trimmed.
#include <unicode/ustring.h>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <string>

#include "platform/objects/NSString.h"
#include "platform/text/ASCII.h"
#include "platform/text/NSCharacterSet.h"

namespace kbx {
namespace {

std::string lowercase(std::span<const char> units) {
  std::string result(units.begin(), units.end());
  std::ranges::transform(result, result.begin(), asciiLower);
  return result;
}

std::u16string lowercase(std::span<const char16_t> units) {
  if (units.size() > std::numeric_limits<std::int32_t>::max() / 3)
    throw std::length_error("a text of this length has no small letters");
  std::u16string result(3 * units.size(), u'\0');  // no character becomes more than three units
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t length =
      u_strToLower(result.data(), static_cast<std::int32_t>(result.size()), units.data(),
                   static_cast<std::int32_t>(units.size()), "", &status);
  if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
  result.resize(static_cast<std::size_t>(length));
  return result;
}

}  // namespace

Ref<NSString> NSString::lowercaseString() const {
  return visitUnits([](auto units) -> Ref<NSString> {
    if constexpr (sizeof(units[0]) == 1)
      return stringByTakingUTF8(lowercase(units));
    else
      return stringByTakingUTF16(lowercase(units));
  });
}

Ref<NSString> NSString::stringByTrimmingCharactersInSet(NSCharacterSet* set) const {
  const NSRange kept = visitUnits([set](auto units) {
    auto isTrimmed = [set](auto unit) {
      return set && set->longCharacterIsMember(static_cast<char16_t>(unit));
    };
    std::size_t start = 0, end = units.size();
    while (start < end && isTrimmed(units[start])) ++start;
    while (end > start && isTrimmed(units[end - 1])) --end;
    return NSRange{start, end - start};
  });
  return substringWithRange(kept);
}

}  // namespace kbx
