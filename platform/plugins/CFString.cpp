// What CoreFoundation.h declares for text.
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "platform/CoreFoundation.h"
#include "platform/plugins/Bridge.h"

using namespace kbx;

namespace {

constexpr CFIndex kMostBytesPerUnit = 3;  // a pair of surrogates takes four, so two for each

std::optional<std::string> bytesOf(CFStringRef string, CFStringEncoding encoding) {
  if (!string) return std::nullopt;
  if (encoding == kCFStringEncodingUTF8) return fromCF(string)->UTF8String();
  if (encoding == kCFStringEncodingASCII && fromCF(string)->isASCII())
    return fromCF(string)->UTF8String();
  return std::nullopt;
}

}  // namespace

CFStringRef CFStringMakeConstantString(const char* text) { return toCF(NSString::constant(text)); }

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* text, CFStringEncoding encoding) {
  if (encoding != kCFStringEncodingUTF8 && encoding != kCFStringEncodingASCII) return nullptr;
  auto string = NSString::stringWithUTF8String(text);
  if (string && encoding == kCFStringEncodingASCII && !string->isASCII()) return nullptr;
  return leakToCF(string);
}

CFIndex CFStringGetLength(CFStringRef string) {
  return string ? static_cast<CFIndex>(fromCF(string)->length()) : 0;
}

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
  if (length < 0 || length > INT64_MAX / kMostBytesPerUnit) return -1;
  if (encoding == kCFStringEncodingASCII) return length;
  return encoding == kCFStringEncodingUTF8 ? length * kMostBytesPerUnit : -1;
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding) {
  if (!buffer || size <= 0) return false;
  buffer[0] = '\0';
  auto bytes = bytesOf(string, encoding);
  if (!bytes || bytes->size() >= static_cast<std::size_t>(size)) return false;
  std::memcpy(buffer, bytes->c_str(), bytes->size() + 1);
  return true;
}
