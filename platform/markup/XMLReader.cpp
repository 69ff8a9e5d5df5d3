#include "platform/markup/XMLReader.h"

#include <algorithm>

#include "platform/markup/CharacterReference.h"
#include "platform/markup/Characters.h"
#include "platform/markup/XMLNames.h"

namespace kbx {

// ---- Small steps ----

bool XMLReader::skip(std::string_view text) {
  if (!startsWith(text)) return false;
  _p += text.size();
  return true;
}

bool XMLReader::skipSpace() {
  const char* const start = _p;
  while (_p != _end && isMarkupSpace(*_p)) ++_p;
  return _p != start;
}

/// The text up to a mark, which is left behind as well; without data() when there is no mark.
std::string_view XMLReader::takeTo(std::string_view mark) {
  const std::size_t length = left().find(mark);
  if (length == std::string_view::npos) return {};
  const std::string_view text{_p, length};
  _p += length + mark.size();
  return text;
}

std::string_view XMLReader::takeName() {
  const char* const start = _p;
  _p = endOfXMLName(_p, _end);
  return {start, static_cast<std::size_t>(_p - start)};
}

/// What stands between quotes; without data() when nothing does.
std::string_view XMLReader::takeQuoted() {
  if (_p == _end || (*_p != '"' && *_p != '\'')) return {};
  const std::string_view quote{_p++, 1};
  return takeTo(quote);
}

bool XMLReader::takeEquals() {
  skipSpace();
  if (!skip("=")) return false;
  skipSpace();
  return true;
}

// ---- The document ----

XMLReader::Outcome XMLReader::read() {
  if (startsWith("<?xml") && left().size() > 5 && isMarkupSpace(_p[5]) && !readDeclaration())
    return Outcome::NotWellFormed;
  if (!readMisc()) return Outcome::NotWellFormed;
  if (startsWith("<!DOCTYPE")) {
    if (!readDocumentType() || !readMisc()) return Outcome::NotWellFormed;
    _hasMisc = false;  // a document type promises a root
  }
  if (_p == _end) return _hasMisc ? Outcome::NoRoot : Outcome::NotWellFormed;
  if (*_p != '<' || !readStartTag() || !readContent() || !readMisc() || _p != _end)
    return _isStopped ? Outcome::Stopped : Outcome::NotWellFormed;
  return Outcome::Document;
}

bool XMLReader::readDeclaration() {
  const std::string_view text = takeTo("?>");
  if (!text.data()) return false;
  _hasMisc = true;
  constexpr std::string_view kSpace = " \t\n";  // a return has become a line feed
  const std::size_t start = text.find_first_not_of(kSpace, 5);
  if (start == text.npos || !text.substr(start).starts_with("version")) return false;
  return text.find("1.", start) != text.npos;
}

bool XMLReader::readMisc() {
  for (;;) {
    skipSpace();
    if (startsWith("<!--")) {
      if (!readComment()) return false;
    } else if (startsWith("<?")) {
      if (!readInstruction()) return false;
    } else {
      return true;
    }
    _hasMisc = true;
  }
}

bool XMLReader::readComment() {
  _p += 4;
  const std::string_view text = takeTo("--");
  if (!text.data() || !skip(">")) return false;
  _handler.comment(text);
  return true;
}

bool XMLReader::readInstruction() {
  _p += 2;
  const std::string_view target = takeName();
  if (target.empty() || equalsIgnoringASCIICase(target, "xml")) return false;
  if (target.find(':') != target.npos) return false;
  const bool hasSpace = skipSpace();
  const std::string_view data = takeTo("?>");
  if (!data.data() || (!hasSpace && !data.empty())) return false;
  _handler.instruction(target, data);
  return true;
}

// ---- Content ----

bool XMLReader::readContent() {
  while (!_open.empty()) {
    if (_p == _end) return false;
    if (*_p == '<' ? !readMarkup() : !readText()) return false;
  }
  return true;
}

bool XMLReader::readMarkup() {
  if (_end - _p < 2) return false;
  switch (_p[1]) {
    case '/':
      return readEndTag();
    case '?':
      return readInstruction();
    case '!':
      return startsWith("<!--") ? readComment() : readSection();
    default:
      return readStartTag();
  }
}

bool XMLReader::readSection() {
  if (!skip("<![CDATA[")) return false;
  const std::string_view text = takeTo("]]>");
  if (!text.data()) return false;
  if (!text.empty()) _handler.text(text);
  return true;
}

bool XMLReader::readText() {
  const char* const stop = findByte(_p, _end, '<');
  const std::string_view run{_p, static_cast<std::size_t>(stop - _p)};
  _p = stop;
  return run.find("]]>") == run.npos && readCharacters(run);
}

bool XMLReader::readCharacters(std::string_view run) {
  std::string scratch;
  for (;;) {
    const std::size_t stop = std::min(run.find('&'), run.size());
    if (stop > 0) _handler.text(run.substr(0, stop));
    run.remove_prefix(stop);
    if (run.empty()) return true;
    std::string_view text;
    if (!readReference(run, scratch, text)) return false;
    if (!text.empty()) _handler.text(text);
  }
}

/// What the reference at the start of `run` stands for, which is then behind it.
bool XMLReader::readReference(std::string_view& run, std::string& scratch, std::string_view& text) {
  if (const auto number = strictNumericReference(run); number.length > 0) {
    scratch = number.text();
    text = scratch;
    run.remove_prefix(number.length);
    return true;
  }
  const std::string_view name = referenceName(run);
  if (name.empty()) return false;
  text = predefinedCharacter(name);
  if (text.empty()) {
    const auto known = _entities.find(name);
    if (known == _entities.end()) return false;
    text = known->second;
    _expandedLength += text.size();
    if (_expandedLength > kLongestExpansion) return false;
  }
  run.remove_prefix(name.size() + 2);
  return true;
}

}  // namespace kbx
