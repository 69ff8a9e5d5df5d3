#include "platform/text/TextDetection.h"

#include <uchardet/uchardet.h>

#include <memory>
#include <string>
#include <string_view>

#include "platform/files/NSURL.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSError.h"
#include "platform/text/CharsetConverter.h"
#include "platform/text/Charsets.h"
#include "platform/text/UTF8.h"

namespace kbx {
namespace {

struct ByteOrderMark {
  std::string_view bytes;
  const char* charset;
};

// The mark of UTF-32 little-endian begins with that of UTF-16, so it is tried first.
constexpr ByteOrderMark kMarks[] = {
    {{"\xFF\xFE\0\0", 4}, "UTF-32LE"}, {{"\0\0\xFE\xFF", 4}, "UTF-32BE"},
    {{"\xFF\xFE", 2}, "UTF-16LE"},     {{"\xFE\xFF", 2}, "UTF-16BE"},
    {{"\xEF\xBB\xBF", 3}, "UTF-8"},
};

const ByteOrderMark* markOf(std::string_view bytes) {
  for (const auto& mark : kMarks)
    if (bytes.starts_with(mark.bytes)) return &mark;
  return nullptr;
}

/// The part of long input that tells most: from the first line that is not ASCII.
std::string_view sample(std::string_view bytes) {
  constexpr std::size_t kEnough = 1 << 20;
  if (bytes.size() <= kEnough) return bytes;
  const std::size_t line = bytes.rfind('\n', asciiPrefixLength(bytes));
  return bytes.substr(line == std::string_view::npos ? 0 : line, kEnough);
}

/// The charset that the statistics of the bytes point to; empty when they point nowhere.
std::string statisticalCharset(std::string_view bytes) {
  const std::unique_ptr<uchardet, decltype(&uchardet_delete)> detector(uchardet_new(),
                                                                       &uchardet_delete);
  bytes = sample(bytes);
  if (uchardet_handle_data(detector.get(), bytes.data(), bytes.size()) != 0) return {};
  uchardet_data_end(detector.get());
  return uchardet_get_charset(detector.get());
}

void store(NSStringEncoding* usedEncoding, std::string_view charset) {
  if (usedEncoding) *usedEncoding = encodingOfCharset(charset);
}

/// The text of bytes in a charset, with U+FFFD for each malformed sequence; absent when the
/// conversion library does not know the charset.
Ref<NSString> stringWithCharset(std::string_view bytes, const char* charset) {
  auto units = decodeCharset(bytes, charset, true);
  return units ? NSString::stringByTakingUTF16(*std::move(units)) : nullptr;
}

Ref<NSString> markedText(std::string_view bytes, const ByteOrderMark& mark) {
  bytes.remove_prefix(mark.bytes.size());
  const bool isUTF8 = mark.bytes.size() == 3;
  return isUTF8 ? NSString::stringWithLossyUTF8(bytes) : stringWithCharset(bytes, mark.charset);
}

}  // namespace

Ref<NSString> stringByDetectingEncoding(NSData* bytes, NSStringEncoding* usedEncoding) {
  if (const ByteOrderMark* mark = markOf(bytes->view())) {
    store(usedEncoding, mark->charset);
    return markedText(bytes->view(), *mark);
  }
  if (auto text = NSString::stringWithUTF8(bytes)) {
    if (usedEncoding) *usedEncoding = NSUTF8StringEncoding;
    return text;
  }
  const std::string charset = statisticalCharset(bytes->view());
  if (charset.empty()) return nullptr;
  auto text = stringWithCharset(bytes->view(), charset.c_str());
  if (text) store(usedEncoding, charset);
  return text;
}

Ref<NSString> stringWithContentsOfURL(NSURL* url, NSStringEncoding* usedEncoding,
                                      Ref<NSError>* error) {
  auto bytes = NSData::dataWithContentsOfURL(url, NSDataReadingNone, error);
  if (!bytes) return nullptr;
  auto text = stringByDetectingEncoding(bytes, usedEncoding);
  if (!text && error) {
    *error = NSError::errorWithDomain(
        NSCocoaErrorDomain(), NSFileReadUnknownStringEncodingError,
        NSDictionary::dictionaryWithPairs({{NSFilePathErrorKey(), url->path()}}));
  }
  return text;
}

}  // namespace kbx
