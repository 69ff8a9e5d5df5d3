// Log messages of any text: their pieces hold all of it but the line feeds, and cut no character.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "KBXOSLogWriter.h"
#include "platform/text/StringBuilder.h"

namespace kbx {
namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

bool isLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
bool isHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

/// An odd first byte announces UTF-16 units, so that surrogates may come alone; else UTF-8.
Ref<NSString> messageOf(std::span<const std::uint8_t> bytes) {
  if (bytes.empty()) return NSString::string();
  const bool isUTF16 = bytes[0] % 2 == 1;
  bytes = bytes.subspan(1);
  if (!isUTF16)
    return NSString::stringWithLossyUTF8(
        {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  std::u16string units;
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
    units += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
  return NSString::stringWithUTF16(units);
}

Ref<NSString> joined(NSArray* pieces) {
  StringBuilder all;
  for (const auto& piece : *pieces) all.append(cast<NSString>(piece));
  return all.take();
}

/// Between two pieces of one line.
void checkCut(NSString* before, NSString* after) {
  const char16_t last = before->characterAtIndex(before->length() - 1);
  require(!(isHighSurrogate(last) && isLowSurrogate(after->characterAtIndex(0))));
}

/// A piece is closed by the character that makes it too long, never before.
void checkLength(NSString* piece, std::size_t limit, bool isLast) {
  const std::size_t length = piece->length();
  require(length > 0);
  require(isLast || length > limit);
  const std::size_t lastCharacter =
      piece->rangeOfComposedCharacterSequenceAtIndex(length - 1).location;
  require(lastCharacter <= limit);
}

void checkLine(KBXOSLogWriter* writer, NSString* line, std::size_t limit) {
  Ref<NSArray> pieces = writer->splitLine(line, limit);
  require(line->length() == 0 ? pieces->count() == 0 : isEqual(joined(pieces), line));
  for (std::size_t i = 0; i < pieces->count(); ++i) {
    auto* piece = cast<NSString>(pieces->objectAtIndex(i));
    const bool isLast = i + 1 == pieces->count();
    checkLength(piece, limit, isLast);
    if (!isLast) checkCut(piece, cast<NSString>(pieces->objectAtIndex(i + 1)));
  }
}

}  // namespace
}  // namespace kbx

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace kbx;
  static const Ref<KBXOSLogWriter> writer = KBXOSLogWriter::init();
  Ref<NSString> message = messageOf({bytes, size});
  require(writer->cStringFromString(message).has_value());
  Ref<NSArray> pieces = writer->splitMessage(message);
  require(isEqual(joined(pieces), message->stringByReplacingOccurrences("\n"_ns, ""_ns)));
  Ref<NSArray> lines = message->componentsSeparatedByString("\n"_ns);
  for (const auto& line : *lines)
    for (std::size_t limit : {128, 3, 0}) checkLine(writer, cast<NSString>(line), limit);
  return 0;
}
