#include "KBXFunctions.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

#include "platform/objects/NSException.h"
#include "platform/objects/NSGeometry.h"
#include "platform/objects/NSRange.h"

namespace kbx {
namespace {

/// The value at an address that need not be aligned.
template <class T>
T valueAt(const void* pointer) {
  T value;
  std::memcpy(&value, pointer, sizeof value);
  return value;
}

Ref<NSString> characterText(const void* pointer) {
  const auto value = valueAt<signed char>(pointer);
  if (value == 0 || value == 1) return value ? "YES"_ns : "NO"_ns;
  return stringWithFormat("'%c'"_ns, static_cast<unsigned char>(value));
}

Ref<NSString> selectorText(const void* pointer) {
  return NSString::stringWithUTF8String(valueAt<SEL>(pointer).name());
}

Ref<NSString> classText(const void* pointer) {
  auto* value = valueAt<NSClass*>(pointer);
  return value ? NSString::stringWithUTF8(value->name()) : nullptr;
}

Ref<NSString> textText(const void* pointer) {
  return stringWithFormat("%s"_ns, valueAt<const char*>(pointer));
}

Ref<NSString> objectText(const void* pointer) {
  return stringWithFormat("%@"_ns, valueAt<NSObject*>(pointer));
}

struct ValueType {
  std::string_view encoding;
  Ref<NSString> (*text)(const void* pointer);
};

constexpr ValueType kValueTypes[] = {
    {"c", characterText},
    {"s", [](auto* at) { return stringWithFormat("%hi"_ns, valueAt<std::int16_t>(at)); }},
    {"S", [](auto* at) { return stringWithFormat("%hu"_ns, valueAt<std::uint16_t>(at)); }},
    {"i", [](auto* at) { return stringWithFormat("%i"_ns, valueAt<std::int32_t>(at)); }},
    {"I", [](auto* at) { return stringWithFormat("%u"_ns, valueAt<std::uint32_t>(at)); }},
    {"q", [](auto* at) { return stringWithFormat("%li"_ns, valueAt<std::int64_t>(at)); }},
    {"Q", [](auto* at) { return stringWithFormat("%lu"_ns, valueAt<std::uint64_t>(at)); }},
    {"f", [](auto* at) { return stringWithFormat("%f"_ns, double{valueAt<float>(at)}); }},
    {"d", [](auto* at) { return stringWithFormat("%f"_ns, valueAt<double>(at)); }},
    {"D", [](auto* at) { return stringWithFormat("%Lf"_ns, valueAt<long double>(at)); }},
    {":", selectorText},
    {"#", classText},
    {"^v", [](auto* at) { return stringWithFormat("%p"_ns, valueAt<const void*>(at)); }},
    {"*", textText},
    {"r*", textText},
    {"{_NSRange=QQ}", [](auto* at) { return NSStringFromRange(valueAt<NSRange>(at)); }},
    {"{CGPoint=dd}", [](auto* at) { return NSStringFromPoint(valueAt<NSPoint>(at)); }},
    {"{CGSize=dd}", [](auto* at) { return NSStringFromSize(valueAt<NSSize>(at)); }},
    {"{CGRect={CGPoint=dd}{CGSize=dd}}",
     [](auto* at) { return NSStringFromRect(valueAt<NSRect>(at)); }},
    {"^{__CFString=}", objectText},
    {"r^{__CFString=}", objectText},
    {"@", objectText},
};

/// The digits of "[12c]", which may be none; nothing for any other encoding.
std::optional<std::string_view> arrayDigits(std::string_view encoding) {
  if (encoding.size() < 3 || !encoding.starts_with('[') || !encoding.ends_with("c]")) return {};
  const std::string_view digits = encoding.substr(1, encoding.size() - 3);
  if (!std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; })) return {};
  return digits;
}

/// The text stored at the address itself. A known size ends it, because an array that is full has
/// no room for the zero; [c] and [0c] stand for an array whose size is elsewhere.
Ref<NSString> arrayText(const void* pointer, std::string_view digits) {
  const auto* text = static_cast<const char*>(pointer);
  const std::size_t size = std::strtoull(digits.data(), nullptr, 10);
  return NSString::stringWithLossyUTF8({text, size ? strnlen(text, size) : std::strlen(text)});
}

}  // namespace

Ref<NSString> KBXFunctions::stringFromPointer(const void* pointer, const char* typeEncoding) {
  if (!pointer)
    raiseInvalidArgument("+[KBXFunctions stringFromPointer:typeEncoding:]: NULL pointer");
  const std::string_view encoding = typeEncoding ? typeEncoding : "";
  const auto* type = std::ranges::find(kValueTypes, encoding, &ValueType::encoding);
  if (type != std::end(kValueTypes)) return type->text(pointer);
  if (auto digits = arrayDigits(encoding)) return arrayText(pointer, *digits);
  const Site site("KBXFoundation/Source/KBXFunctions", 187, classObject(),
                  "stringFromPointer:typeEncoding:");
  KBX_ASSERT_MESSAGE(false, "__objc_no", site, "Unhandled type encoding: %s"_ns, typeEncoding);
}

}  // namespace kbx
