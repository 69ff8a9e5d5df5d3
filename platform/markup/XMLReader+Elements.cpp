// XMLReader: start and end tags, attributes and namespaces.
#include <algorithm>

#include "platform/markup/Characters.h"
#include "platform/markup/XMLNames.h"
#include "platform/markup/XMLReader.h"

namespace kbx {
namespace {

constexpr std::size_t kFewAttributes = 16;

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

bool XMLReader::readStartTag() {
  ++_p;
  XMLName name = splitXMLName(takeName());
  if (name.qualified.empty() || !isQualifiedXMLName(name.qualified)) return false;
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
  if (name.empty() || !isQualifiedXMLName(name) || !takeEquals()) return false;
  const std::string_view raw = takeQuoted();
  std::string_view value;
  if (!raw.data() || !readValue(raw, value)) return false;
  if (name == "xmlns") return declare({}, value);
  if (name.starts_with("xmlns:")) return declare(name.substr(6), value);
  _attributes.push_back({splitXMLName(name), value});
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
