#include "host/console/Escaping.h"

#include "platform/files/FileNames.h"

namespace kbx {
namespace {

constexpr char kDigits[] = "0123456789abcdef";
constexpr SpecialCharacters kSpecialOnOneLine("\\");

void writeHexadecimal(Output& output, unsigned value, unsigned digits) {
  while (digits-- > 0) output.write(kDigits[value >> 4 * digits & 0xF]);
}

void writeBackslashOrUnit(Output& output, char16_t unit) {
  if (unit == '\\') return output.write("\\\\");
  writeUnitEscape(output, unit);
}

}  // namespace

void writeUnitEscape(Output& output, char16_t unit) {
  switch (unit) {
    case '\t':
      return output.write("\\t");
    case '\n':
      return output.write("\\n");
    case '\r':
      return output.write("\\r");
    default:
      output.write("\\u");
      writeHexadecimal(output, unit, 4);
  }
}

void writeOnOneLine(Output& output, NSString* text) {
  writeUTF8(output, text, kSpecialOnOneLine,
            [&](char16_t unit, char16_t) { writeBackslashOrUnit(output, unit); });
}

void writePath(Output& output, std::string_view path) {
  // The text of a path holds a byte that is no character as U+DC00 plus the byte.
  auto escape = [&](char16_t unit, char16_t) {
    if (unit < 0xDC80 || unit > 0xDCFF) return writeBackslashOrUnit(output, unit);
    output.write("\\x");
    writeHexadecimal(output, unit & 0xFF, 2);
  };
  writeUTF8(output, stringWithFileSystemRepresentation(path), kSpecialOnOneLine, escape);
}

std::string shownPath(std::string_view path) {
  StringOutput output;
  writePath(output, path);
  return output.text();
}

}  // namespace kbx
