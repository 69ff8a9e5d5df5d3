// HTMLTokenizer: tags, texts and comments from the characters of a document, by HTML's rules.
#pragma once

#include <string_view>

#include "platform/html/HTMLTags.h"
#include "platform/markup/Characters.h"

namespace kbx {

struct HTMLToken {
  enum class Kind : std::uint8_t { Text, StartTag, EndTag, Comment, Doctype, CData, End };
  Kind kind = Kind::End;
  bool isSelfClosing = false;
  HTMLTag tag = HTMLTag::Unknown;
  std::string_view name;  // of a tag, as written
  std::string_view text;  // of a text (references not replaced), comment or document type
};

/// Ways through the parts of markup that need no state. All answers are views into the document.
class HTMLScanner {
 public:
  explicit HTMLScanner(std::string_view text) : _p(text.data()), _end(text.data() + text.size()) {}

  /// The content of a raw element behind its start tag, up to its end tag or the document's end;
  /// the end tag's attributes are still to come. `name` in small letters.
  std::string_view rawText(std::string_view name);
  /// The same for a script, in which a commented script's end tag does not count.
  std::string_view scriptText();
  /// Everything up to the document's end.
  std::string_view rest();
  /// Leaves out one line feed, as behind the start tag of a preformatted element.
  void skipLineFeed() {
    if (_p != _end && *_p == '\n') ++_p;
  }

 protected:
  bool startsWith(std::string_view text) const { return left().starts_with(text); }
  std::string_view left() const { return {_p, static_cast<std::size_t>(_end - _p)}; }
  const char* find(std::string_view wanted, const char* start) const;
  bool isEndTag(const char* p, std::string_view name) const;
  HTMLToken textUpTo(const char* end);
  HTMLToken commentUpTo(const char* start, const char* end, const char* next);
  HTMLToken bogusComment();
  HTMLToken comment();
  HTMLToken cdata();
  HTMLToken markupDeclaration(bool isForeign);
  HTMLToken instruction();
  HTMLToken serverCode();
  const char* endOfInstruction(const char* close);

  const char* _p;
  const char* const _end;

 private:
  /// Where a mark is next, remembered so that a document full of openings is read once.
  struct NextMark {
    std::string_view mark;
    const char* place = nullptr;
  };
  const char* nextMark(NextMark& memory, const char* start);

  NextMark _nextCodeEnd{"%>"};
  NextMark _nextInstructionEnd{"?>"};
};

/// Attributes has `clear()` and `add(name, value)`; it gets them as written, the value without
/// its quotes and its references not replaced.
template <class Attributes>
class HTMLTokenizer : public HTMLScanner {
 public:
  HTMLTokenizer(std::string_view text, Attributes& attributes)
      : HTMLScanner(text), _attributes(attributes) {}

  /// isForeign  whether the next token is inside SVG or MathML, where CDATA sections are text
  HTMLToken next(bool isForeign) {
    if (_p == _end) return {};
    if (*_p != '<') return textUpTo(findByte(_p, _end, '<'));
    const char second = _p + 1 == _end ? '\0' : _p[1];
    if (isASCIILetter(second)) return tag(HTMLToken::Kind::StartTag, _p + 1);
    switch (second) {
      case '/':
        return endTag();
      case '!':
        return markupDeclaration(isForeign);
      case '?':
        return instruction();
      case '%':
        return serverCode();
      default:
        return textUpTo(findByte(_p + 1, _end, '<'));
    }
  }

 private:
  HTMLToken endTag() {
    const char third = _end - _p < 3 ? '\0' : _p[2];
    if (isASCIILetter(third)) return tag(HTMLToken::Kind::EndTag, _p + 2);
    return third == '\0' ? textUpTo(_end) : bogusComment();
  }

  HTMLToken tag(HTMLToken::Kind kind, const char* name) {
    _attributes.clear();
    HTMLToken token;
    const char* p = name;
    while (p != _end && !isMarkupSpace(*p) && *p != '/' && *p != '>') ++p;
    token.name = {name, static_cast<std::size_t>(p - name)};
    token.tag = tagNamed(token.name);
    _p = attributes(p, token);
    if (_p == nullptr) {  // a tag without its end is no tag
      _p = _end;
      return {};
    }
    token.kind = kind;
    return token;
  }

  const char* skipSpace(const char* p) const {
    while (p != _end && isMarkupSpace(*p)) ++p;
    return p;
  }

  /// Answers the place behind the tag, or nullptr at the document's end.
  const char* attributes(const char* p, HTMLToken& token) {
    for (;;) {
      p = skipSpace(p);
      if (p == _end) return nullptr;
      if (*p == '>') return p + 1;
      if (*p == '/') {
        ++p;
        token.isSelfClosing = p != _end && *p == '>';
        continue;
      }
      p = attribute(p);
    }
  }

  const char* attribute(const char* p) {
    const char* const name = p++;  // whatever it is: an equals sign may begin a name
    while (p != _end && !isMarkupSpace(*p) && *p != '/' && *p != '>' && *p != '=') ++p;
    const std::string_view nameText{name, static_cast<std::size_t>(p - name)};
    const char* const equals = skipSpace(p);
    if (equals == _end || *equals != '=') {
      _attributes.add(nameText, {});
      return equals;
    }
    return value(nameText, skipSpace(equals + 1));
  }

  const char* value(std::string_view name, const char* p) {
    if (p == _end) return p;
    const bool isQuoted = *p == '"' || *p == '\'';
    const char* const start = isQuoted ? p + 1 : p;
    const char* end = start;
    if (isQuoted)
      end = findByte(start, _end, *p);
    else
      while (end != _end && !isMarkupSpace(*end) && *end != '>') ++end;
    _attributes.add(name, {start, static_cast<std::size_t>(end - start)});
    return isQuoted && end != _end ? end + 1 : end;
  }

  Attributes& _attributes;
};

}  // namespace kbx
