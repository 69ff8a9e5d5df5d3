#include "platform/markup/XMLReader.h"

#include <algorithm>
#include <functional>

#include "platform/markup/CharacterReference.h"
#include "platform/markup/Characters.h"
#include "platform/markup/UTF8Decoder.h"

namespace kbx {
namespace {

constexpr std::size_t kFewAttributes = 16;
constexpr std::size_t kLongestExpansion = std::size_t{1} << 20;
constexpr std::string_view kSpace = " \t\n";  // a return has become a line feed

constexpr bool isWithin(char32_t c, std::initializer_list<std::pair<char32_t, char32_t>> ranges) {
  for (const auto& [first, last] : ranges)
    if (c >= first && c <= last) return true;
  return false;
}

bool isNameStart(char32_t c) {
  return isWithin(c, {{0xC0, 0xD6},
                      {0xD8, 0xF6},
                      {0xF8, 0x2FF},
                      {0x370, 0x37D},
                      {0x37F, 0x1FFF},
                      {0x200C, 0x200D},
                      {0x2070, 0x218F},
                      {0x2C00, 0x2FEF},
                      {0x3001, 0xD7FF},
                      {0xF900, 0xFDCF},
                      {0xFDF0, 0xFFFD},
                      {0x10000, 0xEFFFF}});
}

bool isNameCharacter(char32_t c) {
  return isNameStart(c) || c == 0xB7 || isWithin(c, {{0x300, 0x36F}, {0x203F, 0x2040}});
}

constexpr bool isASCIINameStart(char c) { return isASCIILetter(c) || c == '_' || c == ':'; }
constexpr bool isASCIINameCharacter(char c) {
  return isASCIINameStart(c) || isASCIIDigit(c) || c == '-' || c == '.';
}

/// The end of the name that begins at `p`; `p` itself when none does.
const char* endOfName(const char* p, const char* end) {
  for (const char* const start = p; p != end;) {
    if (static_cast<std::uint8_t>(*p) < 0x80) {
      if (p == start ? !isASCIINameStart(*p) : !isASCIINameCharacter(*p)) return p;
      ++p;
      continue;
    }
    const DecodedCharacter next = decodeUTF8(p, end);
    if (p == start ? !isNameStart(next.value) : !isNameCharacter(next.value)) return p;
    p += next.length;
  }
  return p;
}

/// The character of one of the five names that every document knows; empty for any other.
std::string_view predefined(std::string_view name) {
  if (name == "amp") return "&";
  if (name == "lt") return "<";
  if (name == "gt") return ">";
  if (name == "quot") return "\"";
  if (name == "apos") return "'";
  return {};
}

/// The name of the reference that a text begins with; empty when it is no such reference.
std::string_view referenceName(std::string_view text) {
  const char* const start = text.data() + 1;
  const char* const end = text.data() + text.size();
  const char* const stop = endOfName(start, end);
  if (stop == end || *stop != ';') return {};
  return {start, static_cast<std::size_t>(stop - start)};
}

bool isQualifiedName(std::string_view name) {
  const std::size_t colon = name.find(':');
  if (colon == name.npos) return true;
  const auto local = name.substr(colon + 1);
  return colon > 0 && !local.empty() && local.find(':') == local.npos &&
         endOfName(local.data(), local.data() + local.size()) != local.data();
}

XMLName splitName(std::string_view qualified) {
  const std::size_t colon = qualified.find(':');
  return {qualified, {}, colon == qualified.npos ? 0 : static_cast<std::uint32_t>(colon)};
}

struct ExpandedNameHash {
  std::size_t operator()(const XMLName* name) const {
    return seededHash(name->local()) * 31 + seededHash(name->uri);
  }
};
struct ExpandedNameEqual {
  bool operator()(const XMLName* a, const XMLName* b) const {
    return a->local() == b->local() && a->uri == b->uri;
  }
};

}  // namespace

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
  _p = endOfName(_p, _end);
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
  std::size_t start = text.find_first_not_of(kSpace, 5);
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

// ---- The document type ----

bool XMLReader::readDocumentType() {
  _p += 9;
  if (!skipSpace()) return false;
  const char* const start = _p;
  if (takeName().empty()) return false;
  if (skipSpace() && !readExternalID(true)) return false;
  skipSpace();
  if (skip("[") && !readSubset()) return false;
  skipSpace();
  const auto length = static_cast<std::size_t>(_p - start);
  if (!skip(">")) return false;
  _handler.documentType({start, length});
  return true;
}

/// True as well when there is none.
bool XMLReader::readExternalID(bool isSystemRequired) {
  if (skip("SYSTEM")) return skipSpace() && takeQuoted().data();
  if (!skip("PUBLIC")) return true;
  if (!skipSpace() || !takeQuoted().data()) return false;
  const bool hasSpace = skipSpace();
  const bool isSystem = _p != _end && (*_p == '"' || *_p == '\'');
  if (!isSystem) return !isSystemRequired;
  return hasSpace && takeQuoted().data();
}

bool XMLReader::readSubset() {
  for (;;) {
    skipSpace();
    if (skip("]")) return true;
    if (!readSubsetPart()) return false;
  }
}

bool XMLReader::readSubsetPart() {
  if (startsWith("<!--")) return readComment();
  if (startsWith("<?")) return readInstruction();
  if (startsWith("<!ENTITY")) return readEntity();
  const bool isKnown =
      startsWith("<!ELEMENT") || startsWith("<!ATTLIST") || startsWith("<!NOTATION");
  return isKnown && skipDeclaration();  // a parameter entity among others is refused
}

bool XMLReader::skipDeclaration() {
  while (_p != _end && *_p != '>') {
    if (*_p == '"' || *_p == '\'') {
      if (!takeQuoted().data()) return false;
    } else if (*_p == '%') {
      return false;
    } else {
      ++_p;
    }
  }
  return skip(">");
}

bool XMLReader::readEntity() {
  _p += 8;
  if (!skipSpace()) return false;
  const std::string_view name = takeName();
  if (name.empty() || !skipSpace()) return false;
  if (_p != _end && (*_p == '"' || *_p == '\'')) {
    const std::string_view value = takeQuoted();
    if (!value.data()) return false;
    declareEntity(name, value);
    skipSpace();
    return _expandedLength <= kLongestExpansion && skip(">");
  }
  return (startsWith("SYSTEM") || startsWith("PUBLIC")) && skipDeclaration();
}

/// The first declaration counts. One whose value is no plain text is as good as none: a document
/// that refers to it is refused.
void XMLReader::declareEntity(std::string_view name, std::string_view value) {
  std::string replaced;
  std::string text;
  if (_entities.contains(name)) return;
  while (!value.empty()) {  // numbers first: what they stand for is read again
    const std::size_t stop = std::min(value.find("&#"), value.size());
    replaced += value.substr(0, stop);
    value.remove_prefix(stop);
    if (value.empty()) break;
    const CharacterReference found = strictNumericReference(value);
    if (found.length == 0) return;
    replaced += found.text();
    value.remove_prefix(found.length);
  }
  const bool isPlainText = expandEntityValue(replaced, text);
  _expandedLength += text.size();  // of what is no plain text, too: it took its time
  if (!isPlainText) return;
  _entities.emplace(name, std::move(text));
}

bool XMLReader::expandEntityValue(std::string_view value, std::string& text) const {
  if (value.find_first_of("<%") != value.npos) return false;
  while (!value.empty()) {
    const std::size_t stop = std::min(value.find('&'), value.size());
    text += value.substr(0, stop);
    value.remove_prefix(stop);
    if (value.empty()) break;
    if (const auto number = strictNumericReference(value); number.length > 0) {
      text += number.text();
      value.remove_prefix(number.length);
      continue;
    }
    const std::string_view name = referenceName(value);
    const auto known = _entities.find(name);
    const std::string_view content =
        known == _entities.end() ? predefined(name) : std::string_view(known->second);
    if (name.empty() || (content.empty() && known == _entities.end())) return false;
    text += content;
    if (_expandedLength + text.size() > kLongestExpansion) return false;
    value.remove_prefix(name.size() + 2);
  }
  return _expandedLength + text.size() <= kLongestExpansion;
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
  text = predefined(name);
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

// ---- Elements ----

bool XMLReader::readStartTag() {
  ++_p;
  XMLName name = splitName(takeName());
  if (name.qualified.empty() || !isQualifiedName(name.qualified)) return false;
  if (_open.size() >= kDeepestElement) return false;
  const XMLNamespaceScope::Mark mark = _scope.mark();
  bool isEmpty = false;
  if (!readAttributes(isEmpty) || !resolveAll(name)) return false;
  if (!_handler.startElement(name, _attributes, _declarations)) {
    _isStopped = true;
    return false;
  }
  _open.push_back({name.qualified, mark});
  if (isEmpty) close();
  return true;
}

bool XMLReader::readAttributes(bool& isEmpty) {
  _attributes.clear();
  _declarations.clear();
  if (!_declaredPrefixes.empty()) _declaredPrefixes = {};
  for (;;) {
    const bool hasSpace = skipSpace();
    if (skip(">")) return true;
    if (skip("/>")) return isEmpty = true;
    if (!hasSpace || !readAttribute()) return false;
  }
}

bool XMLReader::readAttribute() {
  const std::string_view name = takeName();
  if (name.empty() || !isQualifiedName(name) || !takeEquals()) return false;
  const std::string_view raw = takeQuoted();
  std::string_view value;
  if (!raw.data() || !readValue(raw, value)) return false;
  if (name == "xmlns") return declare({}, value);
  if (name.starts_with("xmlns:")) return declare(name.substr(6), value);
  _attributes.push_back({splitName(name), value});
  return true;
}

bool XMLReader::readValue(std::string_view raw, std::string_view& value) {
  value = raw;
  const char* const end = raw.data() + raw.size();
  if (findAnyByte<'<', '&', '\t', '\n'>(raw.data(), end) == end) return true;
  std::string text;
  std::string scratch;
  while (!raw.empty()) {
    if (raw.front() == '<') return false;
    if (raw.front() != '&') {
      text += isMarkupSpace(raw.front()) ? ' ' : raw.front();
      raw.remove_prefix(1);
      continue;
    }
    const bool isNumber = raw.starts_with("&#");  // whose white space stays as it is
    std::string_view content;
    if (!readReference(raw, scratch, content)) return false;
    for (const char c : content) text += isMarkupSpace(c) && !isNumber ? ' ' : c;
  }
  value = _arena.copy(text);
  return true;
}

bool XMLReader::declare(std::string_view prefix, std::string_view uri) {
  const bool isXML = prefix == "xml";
  if (prefix == "xmlns" || uri == kXMLNSNamespace || isXML != (uri == kXMLNamespace)) return false;
  if (!prefix.empty() && uri.empty()) return false;
  const auto isSame = [&](const auto& known) { return known.prefix == prefix; };
  if (_declarations.size() < kFewAttributes) {
    if (std::any_of(_declarations.begin(), _declarations.end(), isSame)) return false;
  } else {
    if (_declaredPrefixes.empty())
      for (const auto& known : _declarations) _declaredPrefixes.insert(known.prefix);
    if (!_declaredPrefixes.insert(prefix).second) return false;
  }
  _declarations.push_back({prefix, uri});
  return true;
}

bool XMLReader::resolve(XMLName& name, bool isElement) const {
  if (name.prefixLength == 0 && !isElement) return true;
  const auto uri = _scope.namespaceOf(name.prefix());
  if (!uri || name.prefix() == "xmlns") return false;
  name.uri = *uri;
  return true;
}

bool XMLReader::resolveAll(XMLName& name) {
  for (const auto& declaration : _declarations) _scope.bind(declaration.prefix, declaration.uri);
  for (XMLAttribute& attribute : _attributes)
    if (!resolve(attribute.name, false)) return false;
  return resolve(name, true) && areAttributesDistinct();
}

bool XMLReader::areAttributesDistinct() {
  if (_attributes.size() < kFewAttributes) {
    const ExpandedNameEqual isEqual;
    for (std::size_t i = 1; i < _attributes.size(); ++i)
      for (std::size_t k = 0; k < i; ++k)
        if (isEqual(&_attributes[i].name, &_attributes[k].name)) return false;
    return true;
  }
  std::unordered_set<const XMLName*, ExpandedNameHash, ExpandedNameEqual> names;
  for (const XMLAttribute& attribute : _attributes)
    if (!names.insert(&attribute.name).second) return false;
  return true;
}

bool XMLReader::readEndTag() {
  _p += 2;
  if (!skip(_open.back().name)) return false;
  skipSpace();
  if (!skip(">")) return false;
  close();
  return true;
}

void XMLReader::close() {
  _scope.backTo(_open.back().scope);
  _open.pop_back();
  _handler.endElement();
}

}  // namespace kbx
