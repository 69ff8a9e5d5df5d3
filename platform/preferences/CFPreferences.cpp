#include "platform/preferences/CFPreferences.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <string>

#include "platform/objects/NSNumber.h"
#include "platform/preferences/Preferences.h"

namespace kbx {
namespace {

std::string lowerCased(const NSString& text) {
  std::string result = text.lossyUTF8();
  for (char& letter : result)
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter + ('a' - 'A'));
  return result;
}

std::optional<bool> booleanOf(NSObject* value) {
  if (auto* number = cast<NSNumber>(value)) return number->boolValue();
  auto* text = cast<NSString>(value);
  const std::string word = text ? lowerCased(*text) : "";
  if (word == "yes" || word == "true") return true;
  if (word == "no" || word == "false") return false;
  return std::nullopt;
}

std::optional<std::int64_t> integerOf(const NSNumber& number) {
  const double real = number.doubleValue();
  switch (number.kind()) {
    case NSNumber::Kind::Signed:
      return number.integerValue();
    case NSNumber::Kind::Unsigned:
      if (number.unsignedIntegerValue() > INT64_MAX) return std::nullopt;
      return number.integerValue();
    case NSNumber::Kind::Real:
      if (real != std::trunc(real) || real < -0x1p63 || real >= 0x1p63) return std::nullopt;
      return number.integerValue();
    default:
      return std::nullopt;  // a boolean is no number here
  }
}

std::optional<std::int64_t> integerOf(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  std::int64_t value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, fault] = std::from_chars(text.data(), end, value);
  if (fault != std::errc() || stop != end) return std::nullopt;
  return value;
}

std::optional<std::int64_t> integerOf(NSObject* value) {
  if (auto* number = cast<NSNumber>(value)) return integerOf(*number);
  auto* text = cast<NSString>(value);
  return text ? integerOf(text->lossyUTF8()) : std::nullopt;
}

template <class T>
T valueOf(const std::optional<T>& found, bool* isValid) {
  if (isValid) *isValid = found.has_value();
  return found.value_or(T{});
}

}  // namespace

Ref<NSObject> CFPreferencesCopyAppValue(NSString* key, NSString* applicationID) {
  const bool isOwn = isEqual(applicationID, kCFPreferencesCurrentApplication());
  auto domain = Preferences::current().domain(isOwn ? applicationDomainName() : applicationID);
  return domain ? domain->objectForKey(key) : nullptr;
}

bool CFPreferencesGetAppBooleanValue(NSString* key, NSString* applicationID, bool* isValid) {
  return valueOf(booleanOf(CFPreferencesCopyAppValue(key, applicationID)), isValid);
}

std::int64_t CFPreferencesGetAppIntegerValue(NSString* key, NSString* applicationID,
                                             bool* isValid) {
  return valueOf(integerOf(CFPreferencesCopyAppValue(key, applicationID)), isValid);
}

}  // namespace kbx
