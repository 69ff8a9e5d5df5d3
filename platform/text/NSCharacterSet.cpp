#include "platform/text/NSCharacterSet.h"

#include <unicode/uset.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <new>
#include <string>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSString.h"

namespace kbx {

KBX_CLASS(NSCharacterSet)

namespace {

constexpr std::uint64_t kLargestCodePoint = 0x10FFFF;

USet* emptySet() {
  USet* set = uset_openEmpty();
  if (!set) throw std::bad_alloc();
  return set;
}

}  // namespace

NSCharacterSet::NSCharacterSet(USet* set) : _set(set) { uset_freeze(set); }

NSCharacterSet::~NSCharacterSet() { uset_close(_set); }

Ref<NSCharacterSet> NSCharacterSet::withPattern(const char* pattern) {
  UErrorCode status = U_ZERO_ERROR;
  const std::u16string units(pattern, pattern + std::char_traits<char>::length(pattern));
  USet* set = uset_openPattern(units.data(), static_cast<int32_t>(units.size()), &status);
  if (!set) throw std::bad_alloc();  // the patterns are constants: nothing else can fail
  return Ref<NSCharacterSet>::adopt(new NSCharacterSet(set));
}

Ref<NSCharacterSet> NSCharacterSet::characterSetWithRange(NSRange range) {
  USet* set = emptySet();
  if (range.length > 0 && range.location <= kLargestCodePoint) {
    const std::uint64_t length = std::min(range.length, kLargestCodePoint - range.location + 1);
    uset_addRange(set, static_cast<UChar32>(range.location),
                  static_cast<UChar32>(range.location + length - 1));
  }
  return Ref<NSCharacterSet>::adopt(new NSCharacterSet(set));
}

Ref<NSCharacterSet> NSCharacterSet::characterSetWithCharactersInString(NSString* text) {
  USet* set = emptySet();
  if (text) {
    text->visitUnits([set](auto units) {
      const std::u16string wide(units.begin(), units.end());
      uset_addAllCodePoints(set, wide.data(), static_cast<int32_t>(wide.size()));
    });
  }
  return Ref<NSCharacterSet>::adopt(new NSCharacterSet(set));
}

Ref<NSCharacterSet> NSCharacterSet::whitespaceCharacterSet() { return withPattern("[\\t[:Zs:]]"); }

Ref<NSCharacterSet> NSCharacterSet::newlineCharacterSet() {
  return withPattern("[\\n-\\r\\u0085\\u2028\\u2029]");
}

Ref<NSCharacterSet> NSCharacterSet::whitespaceAndNewlineCharacterSet() {
  return withPattern("[\\t[:Zs:]\\n-\\r\\u0085\\u2028\\u2029]");
}

Ref<NSCharacterSet> NSCharacterSet::decimalDigitCharacterSet() { return withPattern("[:Nd:]"); }

Ref<NSCharacterSet> NSCharacterSet::alphanumericCharacterSet() {
  return withPattern("[[:L:][:M:][:N:]]");
}

Ref<NSCharacterSet> NSCharacterSet::invertedSet() const {
  USet* set = uset_cloneAsThawed(_set);
  if (!set) throw std::bad_alloc();
  uset_complement(set);
  return Ref<NSCharacterSet>::adopt(new NSCharacterSet(set));
}

bool NSCharacterSet::longCharacterIsMember(std::uint32_t codePoint) const {
  return codePoint <= kLargestCodePoint && uset_contains(_set, static_cast<UChar32>(codePoint));
}

Ref<NSData> NSCharacterSet::bitmapRepresentation() const {
  constexpr int kCodePoints = 0x10000;
  auto bitmap = NSMutableData::dataWithLength(kCodePoints / 8);
  for (int value = 0; value < kCodePoints; ++value)
    if (uset_contains(_set, value))
      bitmap->mutableBytes()[value / 8] |= static_cast<std::uint8_t>(1 << (value % 8));
  return bitmap;
}

bool NSCharacterSet::isEqual(NSObject* other) const {
  auto* set = cast<NSCharacterSet>(other);
  return set && uset_equals(_set, set->_set);
}

std::size_t NSCharacterSet::hash() const { return static_cast<std::size_t>(uset_size(_set)); }

}  // namespace kbx
