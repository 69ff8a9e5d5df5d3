// Searching and replacing bytes: the same as going from place to place. The first byte of an input
// is the length of the pattern, which follows; the rest is searched.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "ByteSearch.h"
#include "NSData+KBX.h"

namespace kbx {
namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

std::size_t slowFind(std::string_view text, std::string_view pattern) {
  for (std::size_t place = 0; place + pattern.size() <= text.size(); ++place)
    if (text.substr(place, pattern.size()) == pattern) return place;
  return std::string_view::npos;
}

std::string slowReplace(std::string_view text, std::string_view pattern,
                        std::string_view replacement) {
  std::string result;
  for (std::size_t at = slowFind(text, pattern); at != text.npos; at = slowFind(text, pattern)) {
    result.append(text.substr(0, at)).append(replacement);
    text.remove_prefix(at + pattern.size());
  }
  return result.append(text);
}

void checkSearch(std::string_view text, std::string_view pattern) {
  const std::size_t expected = slowFind(text, pattern);
  require(findBytes(text, pattern) == expected);
  require(findBytesPortably(text, pattern) == expected);
  const NSRange found = kbxRangeOfData(NSData::dataWithBytes(text), NSData::dataWithBytes(pattern));
  const bool isThere = expected != std::string_view::npos && (!text.empty() || pattern.empty());
  require(found == (isThere ? NSRange{expected, pattern.size()} : kRangeNotFound));
}

}  // namespace
}  // namespace kbx

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace kbx;
  if (size == 0 || size > 1 << 14) return 0;  // the slow search takes the product of both lengths
  const std::string_view input(reinterpret_cast<const char*>(bytes) + 1, size - 1);
  const std::size_t length = std::min<std::size_t>(bytes[0], input.size());
  const std::string pattern(input.substr(0, length)), text(input.substr(length));
  checkSearch(text, pattern);
  if (pattern.empty()) return 0;
  auto replaced = kbxDataByReplacingData(NSData::dataWithBytes(text),
                                         NSData::dataWithBytes(pattern), kbxDataWithCString("<>"));
  require(replaced->view() == slowReplace(text, pattern, "<>"));
  return 0;
}
