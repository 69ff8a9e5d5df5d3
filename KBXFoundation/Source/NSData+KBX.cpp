#include <algorithm>
#include <array>
#include <string>

#include "ByteSearch.h"
#include "KBXFunctions.h"
#include "NSData+KBX.h"
#include "platform/logging/NSLog.h"
#include "platform/objects/DataBlock.h"
#include "platform/objects/NSException.h"
#include "platform/text/NSCharacterSet.h"

namespace kbx {
namespace {

constexpr const char* kFile = "KBXFoundation/Source/NSData+KBX";

Ref<NSData> tail(NSData* data, std::uint64_t start) {
  return data->subdataWithRange({start, data->length() - start});
}

bool isFound(NSRange range) { return range.location != NSNotFound; }

/// The first of a byte, or the largest position when there is none.
std::size_t firstOf(std::string_view bytes, char byte) { return bytes.find(byte); }

/// A table of the bytes whose bit is set in a character set's bitmap.
std::array<bool, 256> memberTable(NSCharacterSet* set) {
  std::array<bool, 256> isMember{};
  Ref<NSData> bitmap = set ? set->bitmapRepresentation() : nullptr;
  if (!bitmap) return isMember;
  for (std::size_t value = 0; value < isMember.size() && value / 8 < bitmap->length(); ++value)
    isMember[value] = (bitmap->bytes()[value / 8] >> (value % 8)) & 1;
  return isMember;
}

/// The bytes for which `keeps` is true. No branch depends on them, so it costs the same whichever
/// they are.
template <class Keeps>
Ref<NSData> keep(NSData* data, Keeps keeps) {
  DataBlock block(data->length());
  std::uint8_t* to = block.bytes();
  for (unsigned char byte : data->view()) {
    *to = byte;
    to += keeps(byte) ? 1 : 0;
  }
  return block.take(static_cast<std::size_t>(to - block.bytes()));
}

}  // namespace

void kbxAppendByte(NSMutableData* data, int byte) {
  const auto low = static_cast<unsigned char>(byte);
  if (data) data->appendBytes(&low, 1);
}

Ref<NSData> kbxDataWithCString(const char* string) {
  KBX_PRECONDITION(string, Site(kFile, 27, NSData::classObject(),
                                "kbxDataWithCString:", "+[NSData(KBX) kbxDataWithCString:]"));
  return NSData::dataWithBytes(std::string_view(string));
}

NSRange kbxRangeOfData(NSData* data, NSData* pattern) {
  return data ? kbxRangeOfData(data, pattern, {0, data->length()}) : NSRange{};
}

NSRange kbxRangeOfData(NSData* data, NSData* pattern, NSRange range) {
  if (!data) return {};
  KBX_PRECONDITION_TEXT(
      pattern, "data",
      Site(kFile, 57, data, "kbxRangeOfData:range:", "-[NSData(KBX) kbxRangeOfData:range:]"));
  if (pattern->length() == 0) return {range.location, 0};
  const std::uint64_t length = data->length();
  if (range.location >= length || range.length > length - range.location) return kRangeNotFound;
  const std::size_t found =
      findBytes(data->view().substr(range.location, range.length), pattern->view());
  if (found == std::string_view::npos) return kRangeNotFound;
  return {range.location + found, pattern->length()};
}

bool kbxContainsData(NSData* data, NSData* pattern) {
  return data && isFound(kbxRangeOfData(data, pattern));
}

NSRange kbxRangeOfString(NSData* data, NSString* string) {
  if (!data) return {};
  KBX_PRECONDITION(string,
                   Site(kFile, 111, data, "kbxRangeOfString:", "-[NSData(KBX) kbxRangeOfString:]"));
  Ref<NSData> bytes = string->UTF8Data();
  return bytes ? kbxRangeOfData(data, bytes) : kRangeNotFound;
}

bool kbxContainsString(NSData* data, NSString* string) {
  return data && isFound(kbxRangeOfString(data, string));
}

Ref<NSData> kbxSubdataStartingWithCString(NSData* data, const char* string) {
  if (!data) return nullptr;
  const NSRange found = kbxRangeOfData(data, kbxDataWithCString(string));
  return isFound(found) ? tail(data, found.location) : NSData::data();
}

Ref<NSData> kbxSubdataFromCString(NSData* data, const char* string) {
  if (!data) return nullptr;
  const NSRange found = kbxRangeOfData(data, kbxDataWithCString(string));
  return isFound(found) ? tail(data, found.location + found.length) : NSData::data();
}

Ref<NSData> kbxDataByReplacingData(NSData* data, NSData* target, NSData* replacement) {
  if (!data) return nullptr;
  NSRange found = kbxRangeOfData(data, target);
  if (!isFound(found)) return NSData::dataWithBytes(data->view());
  if (found.length == 0)
    raiseInvalidArgument("-[NSData kbxDataByReplacingData:withData:]: empty target");
  auto result = NSMutableData::dataWithCapacity(data->length());
  std::uint64_t cursor = 0;
  while (isFound(found)) {
    result->appendBytes(data->view().substr(cursor, found.location - cursor));
    result->appendData(replacement);
    cursor = found.location + found.length;
    found = kbxRangeOfData(data, target, {cursor, data->length() - cursor});
  }
  result->appendBytes(data->view().substr(cursor));
  return result;
}

Ref<NSData> kbxDataByDeletingFirstLine(NSData* data) {
  if (!data) return nullptr;
  const std::string_view bytes = data->view();
  const std::size_t feed = std::min(firstOf(bytes, '\n'), bytes.size());
  const std::size_t end = std::min(firstOf(bytes.substr(0, feed), '\r'), feed);
  if (end == bytes.size()) return data;
  const bool isPair = bytes.substr(end).starts_with("\r\n");
  return tail(data, end + (isPair ? 2 : 1));
}

Ref<NSData> kbxDataByDeletingNulls(NSData* data) {
  if (!data || firstOf(data->view(), '\0') == std::string_view::npos) return data;
  return keep(data, [](unsigned char byte) { return byte != 0; });
}

Ref<NSData> kbxDataByKeepingCharactersInSet(NSData* data, NSCharacterSet* set) {
  if (!data) return nullptr;
  const auto isMember = memberTable(set);
  return keep(data, [&](unsigned char byte) { return isMember[byte]; });
}

Ref<NSArray> kbxComponentsOfLength(NSData* data, std::uint64_t componentLength) {
  if (!data) return nullptr;
  const std::uint64_t length = data->length();
  constexpr const char* kSelector = "kbxComponentsOfLength:";
  constexpr const char* kFunction = "-[NSData(KBX) kbxComponentsOfLength:]";
  KBX_PRECONDITION_TEXT(length == 0 || length >= componentLength,
                        "[self length] == 0 || [self length] >= componentLength",
                        Site(kFile, 204, data, kSelector, kFunction));
  if (componentLength == 0)
    raiseInvalidArgument("-[NSData kbxComponentsOfLength:]: pieces of no length");
  KBX_PRECONDITION_TEXT(length % componentLength == 0, "[self length] % componentLength == 0",
                        Site(kFile, 205, data, kSelector, kFunction));
  NSArray::Elements pieces;
  pieces.reserve(length / componentLength);
  // The first piece is taken without a look at the length; of an empty buffer it raises.
  std::uint64_t offset = 0;
  do {
    pieces.push_back(data->subdataWithRange({offset, componentLength}));
    offset += componentLength;
  } while (offset <= length - componentLength);
  return NSArray::arrayWithElements(std::move(pieces));
}

Ref<NSData> kbxSafeSubdataWithRange(NSData* data, NSRange range, NSString* sourceLocation) {
  if (!data) return nullptr;
  range.length = std::min(range.length, NSNotFound);
  const NSRange inside = NSIntersectionRange(range, {0, data->length()});
  if (inside != range)
    NSLog("%@ NSData subrange %@ is not in range %@"_ns, sourceLocation, NSStringFromRange(range),
          NSStringFromRange(inside));
  return data->subdataWithRange(inside);
}

}  // namespace kbx
