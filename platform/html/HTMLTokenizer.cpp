#include "platform/html/HTMLTokenizer.h"

#include <algorithm>

namespace kbx {
namespace {

std::string_view between(const char* start, const char* end) {
  return {start, static_cast<std::size_t>(end - start)};
}

}  // namespace

const char* HTMLScanner::find(std::string_view wanted, const char* start) const {
  const std::size_t found = between(start, _end).find(wanted);
  return found == std::string_view::npos ? _end : start + found;
}

const char* HTMLScanner::nextMark(NextMark& memory, const char* start) {
  if (!memory.place || memory.place < start) memory.place = find(memory.mark, start);
  return memory.place;
}

HTMLToken HTMLScanner::textUpTo(const char* end) {
  HTMLToken token;
  token.kind = HTMLToken::Kind::Text;
  token.text = between(_p, end);
  _p = end;
  return token;
}

HTMLToken HTMLScanner::commentUpTo(const char* start, const char* end, const char* next) {
  HTMLToken token;
  token.kind = HTMLToken::Kind::Comment;
  token.text = between(start, std::max(start, end));
  _p = next;
  return token;
}

/// From behind "<!", "<?" or "</" to the next ">".
HTMLToken HTMLScanner::bogusComment() {
  const char* const start = _p + 2;
  const char* const close = findByte(start, _end, '>');
  return commentUpTo(start, close, close == _end ? _end : close + 1);
}

HTMLToken HTMLScanner::comment() {
  const char* const start = _p + 4;
  for (const char* close = findByte(start, _end, '>'); close != _end;
       close = findByte(close + 1, _end, '>')) {
    const auto text = between(start, close);
    if (text.empty() || text == "-") return commentUpTo(start, start, close + 1);
    if (text.ends_with("--")) return commentUpTo(start, close - 2, close + 1);
    if (text.ends_with("--!")) return commentUpTo(start, close - 3, close + 1);
  }
  return commentUpTo(start, _end, _end);
}

HTMLToken HTMLScanner::cdata() {
  const char* const start = _p + 9;
  const char* const close = find("]]>", start);
  HTMLToken token = commentUpTo(start, close, close == _end ? _end : close + 3);
  token.kind = HTMLToken::Kind::CData;
  return token;
}

HTMLToken HTMLScanner::markupDeclaration(bool isForeign) {
  if (startsWith("<!--")) return comment();
  if (isForeign && startsWith("<![CDATA[")) return cdata();
  HTMLToken token = bogusComment();
  constexpr std::size_t kLength = 7;
  if (equalsIgnoringASCIICase(token.text.substr(0, kLength), "doctype")) {
    token.kind = HTMLToken::Kind::Doctype;
    token.text.remove_prefix(kLength);
  }
  return token;
}

/// The place behind an instruction whose first ">" is at `close`.
///
/// That is the end of what word processors write ("<?xml:namespace … />"). Elsewhere ">" may be an
/// operator, and the end is "?>" if one comes before other markup; for a program, which may hold
/// markup, before another instruction.
const char* HTMLScanner::endOfInstruction(const char* close) {
  if (close[-1] == '?' || close[-1] == '/') return close + 1;
  const auto content = between(_p + 2, close);
  const bool isProgram = content.starts_with("php") || content.starts_with("=") ||
                         (!content.empty() && isMarkupSpace(content.front()));
  const char* const end = nextMark(_nextInstructionEnd, close);
  const char* const limit = end == _end ? _end : std::min(end, find(isProgram ? "<?" : "<", close));
  return end != _end && limit == end ? end + 2 : close + 1;
}

HTMLToken HTMLScanner::instruction() {
  const char* const start = _p + 2;
  const char* const close = findByte(start, _end, '>');
  if (close == _end) return commentUpTo(start, _end, _end);
  const char* const next = endOfInstruction(close);
  return commentUpTo(start, next - 1, next);
}

HTMLToken HTMLScanner::serverCode() {
  const char* const start = _p + 2;
  const char* const close = nextMark(_nextCodeEnd, start);
  if (close == _end) return textUpTo(findByte(start, _end, '<'));
  return commentUpTo(start, close, close + 2);
}

/// Whether the end tag of `name` begins at `p`.
bool HTMLScanner::isEndTag(const char* p, std::string_view name) const {
  const auto text = between(p, _end);
  if (text.size() < name.size() + 3 || text[1] != '/') return false;
  if (!equalsIgnoringASCIICase(text.substr(2, name.size()), name)) return false;
  const char behind = text[2 + name.size()];
  return isMarkupSpace(behind) || behind == '/' || behind == '>';
}

std::string_view HTMLScanner::rawText(std::string_view name) {
  const char* const start = _p;
  for (_p = findByte(_p, _end, '<'); _p != _end; _p = findByte(_p + 1, _end, '<'))
    if (isEndTag(_p, name)) break;
  return between(start, _p);
}

std::string_view HTMLScanner::scriptText() {
  constexpr std::string_view kName = "script";
  const char* const start = _p;
  bool isCommented = false;  // behind "<!--"
  bool isNested = false;     // behind a start tag within that
  for (; _p != _end; ++_p) {
    if (*_p == '-' && isCommented && startsWith("-->")) {
      isCommented = isNested = false;
    } else if (*_p == '<') {
      if (startsWith("<!--")) {
        isCommented = true;
        _p += 1;  // so that "<!-->" is both ends, as the marks may share their dashes
      } else if (isEndTag(_p, kName)) {
        if (!isNested) break;
        isNested = false;
      } else if (isCommented && _end - _p > 7 &&
                 equalsIgnoringASCIICase(between(_p + 1, _p + 7), kName)) {
        isNested |= isMarkupSpace(_p[7]) || _p[7] == '/' || _p[7] == '>';
      }
    }
  }
  return between(start, _p);
}

std::string_view HTMLScanner::rest() {
  const char* const start = _p;
  _p = _end;
  return between(start, _end);
}

}  // namespace kbx
