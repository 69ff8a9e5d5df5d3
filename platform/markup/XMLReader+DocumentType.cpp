// XMLReader: the document type and the entities that it declares.
#include <algorithm>

#include "platform/markup/CharacterReference.h"
#include "platform/markup/XMLNames.h"
#include "platform/markup/XMLReader.h"

namespace kbx {

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
        known == _entities.end() ? predefinedCharacter(name) : std::string_view(known->second);
    if (name.empty() || (content.empty() && known == _entities.end())) return false;
    text += content;
    if (_expandedLength + text.size() > kLongestExpansion) return false;
    value.remove_prefix(name.size() + 2);
  }
  return _expandedLength + text.size() <= kLongestExpansion;
}

}  // namespace kbx
