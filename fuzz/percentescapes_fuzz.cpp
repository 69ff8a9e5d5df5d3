// Percent escapes: replaced, added and replaced again. Even inputs are UTF-8, odd ones are units.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "NSString+KBXPercentEscapes.h"
#include "platform/objects/NSData.h"
#include "platform/text/StringEncoding.h"

namespace kbx {
namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

Ref<NSString> textOf(std::string_view bytes) {
  if (bytes.size() % 2 == 0) return NSString::stringWithLossyUTF8(bytes);
  bytes.remove_prefix(1);
  return NSString::initWithData(NSData::dataWithBytes(bytes), NSUTF16LittleEndianStringEncoding);
}

bool isScalars(NSString* text) { return text->UTF8String().has_value(); }

/// ASCII alone, and every percent sign begins an escape.
void requireEscaped(NSString* text) {
  require(text->isASCII());
  const std::string bytes = *text->UTF8String();
  for (std::size_t i = bytes.find('%'); i != std::string::npos; i = bytes.find('%', i + 1))
    require(bytes.find_first_not_of("0123456789ABCDEF", i + 1) >= i + 3);
  require(bytes.find_first_of(" \"<>\\^`{|}#[]") == std::string::npos);
}

void encodeAndDecode(NSString* text) {
  for (const Ref<NSString>& escaped :
       {kbxEncodeForQueryString(text), kbxEncodeURLKeepingUnescaped(text, nullptr)}) {
    require((escaped != nullptr) == isScalars(text));
    if (!escaped) continue;
    requireEscaped(escaped);
    require(isEqual(kbxDecodePercentEscapes(escaped), text));
  }
}

void decode(NSString* text) {
  const Ref<NSString> plain = kbxDecodePercentEscapes(text);
  // Percent signs that stay escaped are all that a second time finds.
  const Ref<NSString> kept = kbxDecodePercentEscapesKeepingEscaped(text, "%"_ns);
  require((kept != nullptr) == (plain != nullptr));
  if (kept) require(isEqual(kbxDecodePercentEscapes(kept), plain));
  if (plain && isScalars(plain)) encodeAndDecode(plain);
}

}  // namespace
}  // namespace kbx

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace kbx;
  const Ref<NSString> text = textOf({reinterpret_cast<const char*>(bytes), size});
  encodeAndDecode(text);
  decode(text);
  return 0;
}
