#include "platform/text/Decomposition.h"

#include <unicode/unorm2.h>
#include <unicode/utf16.h>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

namespace kbx {
namespace {

const UNormalizer2* normalizer() {
  UErrorCode status = U_ZERO_ERROR;
  return unorm2_getNFDInstance(&status);
}

std::int32_t lengthOf(std::u16string_view units) {
  if (units.size() > std::numeric_limits<std::int32_t>::max() / 4)
    throw std::length_error("a text of this length is not decomposed");
  return static_cast<std::int32_t>(units.size());
}

std::u16string decomposed(std::u16string_view units) {
  std::u16string result(decomposedLength(units), u'\0');
  UErrorCode status = U_ZERO_ERROR;
  unorm2_normalize(normalizer(), units.data(), lengthOf(units), result.data(), lengthOf(result),
                   &status);
  if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
  return result;
}

}  // namespace

std::size_t decomposedLength(std::u16string_view units) {
  constexpr UChar32 kFirstComposed = 0xC0;
  std::size_t length = 0;
  for (std::size_t i = 0; i < units.size();) {
    UChar32 c;
    U16_NEXT(units, i, units.size(), c);
    UErrorCode status = U_ZERO_ERROR;
    char16_t parts[8];
    const std::int32_t count =
        c < kFirstComposed ? -1 : unorm2_getDecomposition(normalizer(), c, parts, 8, &status);
    length += static_cast<std::size_t>(count < 0 ? U16_LENGTH(c) : count);
  }
  return length;
}

std::size_t decomposedLength(const NSString* text) {
  return text->visitUnits([](auto units) {
    if constexpr (sizeof(units[0]) == sizeof(char16_t))
      return decomposedLength(std::u16string_view(units.data(), units.size()));
    else
      return units.size();
  });
}

Ref<NSString> NSString::decomposedStringWithCanonicalMapping() const {
  return visitUnits([this](auto units) -> Ref<NSString> {
    if constexpr (sizeof(units[0]) == sizeof(char16_t))
      return stringWithUTF16(decomposed({units.data(), units.size()}));
    else
      return const_cast<NSString*>(this);
  });
}

}  // namespace kbx
