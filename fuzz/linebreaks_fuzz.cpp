// Line breaks of a message: whatever the bytes, one pass does what two replacements do.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "LineBreaks.h"
#include "NSData+KBX.h"

namespace kbx {
namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

std::string replaced(std::string_view text, std::string_view target) {
  std::string result;
  for (std::size_t at = text.find(target); at != text.npos; at = text.find(target)) {
    result.append(text.substr(0, at)).append("\n");
    text.remove_prefix(at + target.size());
  }
  return result.append(text);
}

/// In a block of exactly the size that is asked for, so that the address sanitizer sees more.
void checkLoop(NSData* input, LineBreakLoop loop, std::string_view expected) {
  if (!hasLineBreakLoop(loop)) return;
  std::vector<std::uint8_t> output(input->length());
  const std::size_t length =
      copyWithLineFeeds({input->bytes(), input->length()}, output.data(), loop);
  require(std::string_view(reinterpret_cast<const char*>(output.data()), length) == expected);
}

}  // namespace
}  // namespace kbx

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace kbx;
  auto input = NSData::dataWithBytes(bytes, size);
  const std::string expected = replaced(replaced(input->view(), "\r\n"), "\r");
  for (auto loop : {LineBreakLoop::Compressing, LineBreakLoop::Wide, LineBreakLoop::Narrow,
                    LineBreakLoop::Bytewise})
    checkLoop(input, loop, expected);

  auto output = kbxDataByNormalizingLineBreaks(input);
  require(output->view() == expected && !isSame(output, input));
  require(!kbxContainsData(output, kbxDataWithCString("\r")));
  require(isEqual(kbxDataByNormalizingLineBreaks(output), output));

  auto rest = kbxDataByDeletingFirstLine(input);
  const std::size_t lineBreak = expected.find('\n');
  require(isSame(rest, input) == (lineBreak == std::string::npos));
  if (lineBreak != std::string::npos)
    require(kbxDataByNormalizingLineBreaks(rest)->view() == expected.substr(lineBreak + 1));
  return 0;
}
