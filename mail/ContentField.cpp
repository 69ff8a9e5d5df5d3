#include "mail/ContentField.h"

#include <algorithm>
#include <charconv>

#include "mail/ASCII.h"
#include "mail/HeaderText.h"

namespace kbx {
namespace {

constexpr std::size_t kMostParameters = 4096;

/// Whether a parameter begins here that is customary in mail: what its writer left out is the
/// semicolon in front of it.
bool beginsUsualParameter(std::string_view text) {
  for (std::string_view name : {"boundary", "charset", "delsp", "filename", "format", "micalg",
                                "name", "protocol", "reply-type", "size", "smime-type", "type"}) {
    if (!startsWithWord(text, name)) continue;
    const std::size_t mark = text.find_first_not_of("*0123456789 \t", name.size());
    if (mark != std::string_view::npos && text[mark] == '=') return true;
  }
  return false;
}

/// Walks the bytes of a value from token to token.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : _text(text) {}

  bool isAtEnd() const { return _at >= _text.size(); }
  char next() const { return _text[_at]; }
  void skip() { ++_at; }

  void skipSpaceAndComments() {
    while (!isAtEnd() && (isSpace(next()) || next() == '(')) {
      if (next() == '(')
        skipComment();
      else
        skip();
    }
  }
  /// Up to one of the stops, blanks at its end left out.
  std::string_view token(std::string_view stops) {
    const std::size_t start = _at;
    _at = std::min(_text.find_first_of(stops, _at), _text.size());
    return trimmed(_text.substr(start, _at - start));
  }
  /// A value without quotes.
  std::string bare() {
    const std::size_t start = _at;
    while (!isAtEnd() && next() != ';' && !isBeforeParameter()) skip();
    return std::string(trimmed(_text.substr(start, _at - start)));
  }
  /// Goes to the name of the next parameter. What stands before it belongs to nothing.
  void skipToParameter() {
    while (!isAtEnd() && next() != ';' && !isBeforeParameter()) skip();
    if (isAtEnd()) return;
    skip();
    skipSpaceAndComments();
  }
  /// Without its quotes and backslashes; to the end when the closing quote is missing.
  std::string quoted() {
    std::string value;
    for (skip(); !isAtEnd() && next() != '"'; skip()) {
      if (next() == '\\' && _at + 1 < _text.size()) skip();
      value += next();
    }
    if (!isAtEnd()) skip();
    return value;
  }

 private:
  bool isBeforeParameter() const {
    return isSpace(next()) && beginsUsualParameter(_text.substr(_at + 1));
  }
  void skipComment() {
    int depth = 0;
    for (; !isAtEnd(); skip()) {
      if (next() == '\\') {
        skip();
        if (isAtEnd()) return;
        continue;
      }
      depth += next() == '(' ? 1 : next() == ')' ? -1 : 0;
      if (depth == 0) return skip();
    }
  }

  std::string_view _text;
  std::size_t _at = 0;
};

std::string unescaped(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isEscape = text[i] == '%' && i + 2 < text.size() &&
                          digitValue(text[i + 1], 16) >= 0 && digitValue(text[i + 2], 16) >= 0;
    if (!isEscape) {
      bytes += text[i];
      continue;
    }
    bytes += static_cast<char>(digitValue(text[i + 1], 16) * 16 + digitValue(text[i + 2], 16));
    i += 2;
  }
  return bytes;
}

/// Takes "charset'language'" away from the start; the charset.
std::string takeCharset(std::string& value) {
  const std::size_t first = value.find('\'');
  const std::size_t second = first == std::string::npos ? first : value.find('\'', first + 1);
  if (second == std::string::npos) return {};
  std::string charset = value.substr(0, first);
  value.erase(0, second + 1);
  return charset;
}

}  // namespace

ContentField::ContentField(std::string_view raw) {
  const std::string line = unfolded(raw);
  Scanner scanner(line);
  scanner.skipSpaceAndComments();
  _value = lowercase(scanner.token("; \t("));
  while (!scanner.isAtEnd() && _parameters.size() < kMostParameters) {
    scanner.skipToParameter();
    if (scanner.isAtEnd()) return;
    const std::string_view name = scanner.token("=;");
    if (scanner.isAtEnd() || scanner.next() != '=') continue;
    scanner.skip();
    scanner.skipSpaceAndComments();
    const bool isQuoted = !scanner.isAtEnd() && scanner.next() == '"';
    addParameter(name, isQuoted ? scanner.quoted() : scanner.bare());
  }
}

void ContentField::addParameter(std::string_view name, std::string value) {
  Parameter parameter;
  if (name.ends_with('*')) {
    parameter.isExtended = true;
    name.remove_suffix(1);
  }
  const std::size_t mark = name.find('*');
  if (mark != std::string_view::npos) {
    const std::string_view number = name.substr(mark + 1);
    std::from_chars(number.data(), number.data() + number.size(), parameter.piece);
    name = name.substr(0, mark);
  }
  parameter.name = lowercase(name);
  parameter.value = std::move(value);
  _parameters.push_back(std::move(parameter));
}

std::vector<const ContentField::Parameter*> ContentField::piecesOf(std::string_view name) const {
  std::vector<const Parameter*> pieces;
  const Parameter* plain = nullptr;
  const Parameter* extended = nullptr;
  for (const Parameter& parameter : _parameters) {
    if (parameter.name != name) continue;
    if (parameter.piece >= 0)
      pieces.push_back(&parameter);
    else if (const Parameter*& place = parameter.isExtended ? extended : plain; !place)
      place = &parameter;
  }
  // Who writes several forms wrote the plain one for readers that know no better.
  if (extended) return {extended};
  if (pieces.empty() && plain) return {plain};
  std::ranges::stable_sort(pieces, {}, &Parameter::piece);
  const auto isRepeated = [](auto* one, auto* next) { return one->piece == next->piece; };
  pieces.erase(std::unique(pieces.begin(), pieces.end(), isRepeated), pieces.end());
  return pieces;
}

std::string ContentField::parameter(std::string_view name) const {
  std::string bytes;
  for (const Parameter* piece : piecesOf(name)) bytes += piece->value;
  return bytes;
}

std::string ContentField::text(std::string_view name, TextDecoder& decoder) const {
  std::string bytes, charset;
  bool isExtended = false;
  for (const Parameter* piece : piecesOf(name)) {
    std::string value = piece->value;
    if (piece->isExtended && bytes.empty() && charset.empty()) charset = takeCharset(value);
    isExtended |= piece->isExtended;
    bytes += piece->isExtended ? unescaped(value) : value;
  }
  if (isExtended) return decoder.text(std::move(bytes), charset);
  return headerText(bytes, decoder);
}

}  // namespace kbx
