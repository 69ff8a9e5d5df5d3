// HTMLTreeBuilder: the elements of an HTML document from its tags, made tidy on the way.
#pragma once

#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/html/HTMLOpenElements.h"
#include "platform/html/HTMLTags.h"
#include "platform/html/HTMLTextFlow.h"
#include "platform/html/HTMLTokenizer.h"

namespace kbx {

/// Reads a document and tells a sink what is in it, in the order of the document. The rules are in
/// docs/html.md. Time and memory grow with the input alone, whatever it is.
///
/// Sink is that of HTMLTextFlow, and has:
///   Attributes&  attributes()           for the tokenizer
///   Place html(), head(), body()        which are there from the beginning
///   adoptAttributes(Place)              the last tag's attributes are the place's
///   Place append(Place, HTMLToken, HTMLVocabulary)  a new element, with the last tag's attributes
///   rawText(Place, string_view, bool)   text of an element that nobody reads, references in it or
///   not comment(Place, string_view), doctype(string_view) beginFrameless(), endFrameless() around
///   what is shown where frames are not
template <class Sink>
class HTMLTreeBuilder {
 public:
  using Place = typename Sink::Place;

  HTMLTreeBuilder(std::string_view text, Sink& sink)
      : _sink(sink),
        _flow(sink),
        _tokens(text, sink.attributes()),
        _open(sink.html(), sink.body()) {}

  void build() {
    for (;;) {
      const HTMLToken token = _tokens.next(_open.isForeign());
      switch (token.kind) {
        case HTMLToken::Kind::Text:
        case HTMLToken::Kind::CData:
          text(token.text, token.kind == HTMLToken::Kind::Text);
          break;
        case HTMLToken::Kind::StartTag:
          startTag(token);
          break;
        case HTMLToken::Kind::EndTag:
          endTag(token);
          break;
        case HTMLToken::Kind::Comment:
          _sink.comment(place(), token.text);
          break;
        case HTMLToken::Kind::Doctype:
          _sink.doctype(token.text);
          break;
        case HTMLToken::Kind::End:
          finish();
          return;
      }
      _isBehindBreak = token.kind == HTMLToken::Kind::StartTag && token.tag == HTMLTag::Br;
    }
  }

 private:
  using OpenElements = HTMLOpenElements<Place>;
  using Index = typename OpenElements::Index;

  // ---- The open elements ----

  Place place() const { return _open.top().place; }

  void pop() {
    const auto element = _open.pop();
    if (element.vocabulary != HTMLVocabulary::HTML) return;
    if (element.tag == HTMLTag::Form) _hasForm = false;
    if (element.tag == HTMLTag::Noframes) endFrameless();
  }

  /// Ends the element at the index and all that is open inside it.
  void popTo(Index index) {
    while (_open.topIndex() >= index) pop();
  }

  /// Ends the innermost open element of the tag if no barrier is around it.
  bool popOpen(HTMLTag tag, Index barrier) {
    const Index index = _open.lastOpen(tag);
    if (index <= barrier) return false;
    popTo(index);
    return true;
  }

  void popAnyOpen(std::initializer_list<HTMLTag> tags, Index barrier) {
    for (const HTMLTag tag : tags) popOpen(tag, barrier);
  }

  // ---- Text ----

  void text(std::string_view run, bool hasReferences) {
    if (_isInHead) _isInHead = run.find_first_not_of(" \t\n") == run.npos;
    if (_open.top().preserves)
      _flow.preservedText(place(), run, hasReferences);
    else
      _flow.text(place(), run, hasReferences);
  }

  void blockStart() { _flow.blockStart(place()); }
  void blockEnd() { _flow.blockEnd(place()); }

  void beginFrameless() {
    _outerFlows.push_back(_flow.exchangeState({}));
    _sink.beginFrameless();
  }
  void endFrameless() {
    blockEnd();
    _flow.exchangeState(_outerFlows.back());
    _outerFlows.pop_back();
    _sink.endFrameless();
  }

  void finish() {
    popTo(OpenElements::kBody + 1);
    blockEnd();
  }

  // ---- Start tags ----

  void startTag(const HTMLToken& token) {
    const HTMLTagInfo& info = infoOf(token.tag);
    // A script or style that ends in its own tag must not hold the rest of the document.
    const bool isRaw = info.action == HTMLAction::Script || info.action == HTMLAction::Style;
    if (_open.isForeign() && (token.isSelfClosing || !isRaw)) {
      if (!info.has(kLeavesForeign)) return startForeign(token, _open.top().vocabulary);
      while (_open.isForeign()) pop();
    }
    switch (info.action) {
      case HTMLAction::Html:
        return adoptAttributes(_sink.html(), _hasHTML);
      case HTMLAction::Head:
        return;
      case HTMLAction::Body:
        blockStart();
        _isInHead = false;
        return adoptAttributes(_sink.body(), _hasBody);
      case HTMLAction::HeadVoid:
        _sink.append(_sink.head(), token, HTMLVocabulary::HTML);
        return;
      case HTMLAction::Title:
        return headText(token, true);
      case HTMLAction::Style:
        return headText(token, false);
      case HTMLAction::Script:
        return script(token);
      case HTMLAction::Foreign:
        return startForeign(
            token, token.tag == HTMLTag::Svg ? HTMLVocabulary::SVG : HTMLVocabulary::MathML);
      default:
        return startInBody(token, info);
    }
  }

  void adoptAttributes(Place place, bool& isTaken) {
    // Of the first tag alone: adding those of many tags would take time beyond the input's length.
    if (!std::exchange(isTaken, true)) _sink.adoptAttributes(place);
  }

  void headText(const HTMLToken& token, bool hasReferences) {
    const Place element = _sink.append(_sink.head(), token, HTMLVocabulary::HTML);
    _sink.rawText(element, _tokens.rawText(infoOf(token.tag).name), hasReferences);
  }

  void script(const HTMLToken& token) {
    const std::string_view content = _tokens.scriptText();
    if (_open.isFull()) return;
    const Place parent = _isInHead ? _sink.head() : place();
    _sink.rawText(_sink.append(parent, token, HTMLVocabulary::HTML), content, false);
  }

  void startInBody(const HTMLToken& token, const HTMLTagInfo& info) {
    _isInHead = false;
    if (token.tag == HTMLTag::Form && _hasForm) return blockStart();
    const Index before = _open.topIndex();
    closeBefore(token.tag, info);
    if (info.has(kBlock)) _open.topIndex() < before ? blockEnd() : blockStart();
    if (info.has(kVoid)) return voidElement(token, info);
    if (token.tag == HTMLTag::Unknown) return unknownElement(token);
    if (_open.isFull()) return fullElement(info);
    _open.push(_sink.append(place(), token, HTMLVocabulary::HTML), token.tag, HTMLVocabulary::HTML);
    behindStart(info);
  }

  void behindStart(const HTMLTagInfo& info) {
    switch (info.action) {
      case HTMLAction::Form:
        _hasForm = true;
        return;
      case HTMLAction::Pre:
        return _tokens.skipLineFeed();
      case HTMLAction::EscapableRaw:
        _tokens.skipLineFeed();
        return _flow.preservedText(place(), _tokens.rawText(info.name), true);
      case HTMLAction::Raw:
        return _flow.preservedText(place(), _tokens.rawText(info.name), false);
      case HTMLAction::PlainText:
        return _flow.preservedText(place(), _tokens.rest(), false);
      case HTMLAction::NoFrames:
        return beginFrameless();
      default:
        return;
    }
  }

  /// An element that is nested too deep: its text alone counts, unless nobody is to see it.
  void fullElement(const HTMLTagInfo& info) {
    if (info.action == HTMLAction::NoFrames) _tokens.rawText(info.name);
    if (info.action == HTMLAction::EscapableRaw)
      _flow.preservedText(place(), _tokens.rawText(info.name), true);
    if (info.action == HTMLAction::Raw)
      _flow.preservedText(place(), _tokens.rawText(info.name), false);
    if (info.action == HTMLAction::PlainText) _flow.preservedText(place(), _tokens.rest(), false);
  }

  void voidElement(const HTMLToken& token, const HTMLTagInfo& info) {
    if (!_open.isFull()) _sink.append(place(), token, HTMLVocabulary::HTML);
    if (info.action == HTMLAction::Break) _flow.lineBreak(place());
    if (info.has(kBlock)) blockEnd();
  }

  void unknownElement(const HTMLToken& token) {
    // What XML could not name is left out; what stands inside stays.
    if (!isPlainName(token.name) || _open.isFull()) return;
    const Place element = _sink.append(place(), token, HTMLVocabulary::HTML);
    if (!token.isSelfClosing)
      _open.push(element, _open.tagOfName(token.name), HTMLVocabulary::HTML);
  }

  void startForeign(const HTMLToken& token, HTMLVocabulary vocabulary) {
    _isInHead = false;
    if (!isPlainName(token.name) || _open.isFull()) return;
    const Place element = _sink.append(place(), token, vocabulary);
    if (token.isSelfClosing) return;
    const HTMLTag tag = token.tag == HTMLTag::Unknown ? _open.tagOfName(token.name) : token.tag;
    _open.push(element, tag, vocabulary);
    if (isIntegrationPoint(token.name, vocabulary)) _open.makeIntegrationPoint();
  }

  static bool isIntegrationPoint(std::string_view name, HTMLVocabulary vocabulary) {
    const auto isOneOf = [&](std::initializer_list<std::string_view> names) {
      for (const auto candidate : names)
        if (equalsIgnoringASCIICase(name, candidate)) return true;
      return false;
    };
    return vocabulary == HTMLVocabulary::SVG ? isOneOf({"foreignobject", "desc", "title"})
                                             : isOneOf({"mi", "mo", "mn", "ms", "mtext"});
  }

  /// Ends what cannot stay open around the element that begins.
  void closeBefore(HTMLTag tag, const HTMLTagInfo& info) {
    if (info.has(kClosesParagraph)) popOpen(HTMLTag::P, _open.top().scope);
    switch (info.action) {
      case HTMLAction::Item:
        popOpen(HTMLTag::Li, _open.top().items);
        break;
      case HTMLAction::Definition:
        return popAnyOpen({HTMLTag::Dd, HTMLTag::Dt}, _open.top().items);
      case HTMLAction::Option:
        popOpen(HTMLTag::Option, _open.top().scope);
        break;
      case HTMLAction::OptionGroup:
        return popAnyOpen({HTMLTag::Option, HTMLTag::Optgroup}, _open.top().scope);
      case HTMLAction::Cell:
        return popAnyOpen({HTMLTag::Td, HTMLTag::Th, HTMLTag::Caption}, _open.top().table);
      case HTMLAction::Row:
        return popAnyOpen(
            {HTMLTag::Td, HTMLTag::Th, HTMLTag::Caption, HTMLTag::Colgroup, HTMLTag::Tr},
            _open.top().table);
      case HTMLAction::Section:
        return popAnyOpen({HTMLTag::Td, HTMLTag::Th, HTMLTag::Caption, HTMLTag::Colgroup,
                           HTMLTag::Tr, HTMLTag::Tbody, HTMLTag::Thead, HTMLTag::Tfoot},
                          _open.top().table);
      case HTMLAction::Heading:
        if (infoOf(_open.top().tag).action == HTMLAction::Heading) pop();
        break;
      case HTMLAction::Anchor:
      case HTMLAction::NoBreak:
        popOpen(tag, _open.top().block);
        break;
      case HTMLAction::Button:
        popOpen(tag, _open.top().scope);
        break;
      default:
        break;
    }
  }

  // ---- End tags ----

  void endTag(const HTMLToken& token) {
    const HTMLTagInfo& info = infoOf(token.tag);
    if (info.action == HTMLAction::Break) {
      // Behind its start tag it is how the canonical form of other XML ends the one break.
      if (!_isBehindBreak) startTag(token);
      return;
    }
    if (token.tag == HTMLTag::Body || token.tag == HTMLTag::Html) return blockEnd();
    const HTMLTag tag =
        token.tag == HTMLTag::Unknown ? _open.knownTagOfName(token.name) : token.tag;
    if (info.action == HTMLAction::Heading)
      endHeading();
    else
      popOpen(tag, _open.barrierOfEnd(tag));
    if (info.has(kBlock)) blockEnd();
  }

  /// The end tag of any heading ends the innermost one.
  void endHeading() {
    HTMLTag innermost = HTMLTag::H1;
    for (auto i = static_cast<std::uint32_t>(HTMLTag::H2);
         i <= static_cast<std::uint32_t>(HTMLTag::H6); ++i)
      if (_open.lastOpen(static_cast<HTMLTag>(i)) > _open.lastOpen(innermost))
        innermost = static_cast<HTMLTag>(i);
    popOpen(innermost, _open.top().scope);
  }

  /// Whether a name can be written in XML and needs no prefix.
  static bool isPlainName(std::string_view name) {
    for (const char c : name)
      if (!isASCIIAlphanumeric(c) && c != '-' && c != '_' && c != '.') return false;
    return true;
  }

  Sink& _sink;
  HTMLTextFlow<Sink> _flow;
  HTMLTokenizer<typename Sink::Attributes> _tokens;
  OpenElements _open;
  std::vector<typename HTMLTextFlow<Sink>::State> _outerFlows;
  bool _isInHead = true;
  bool _isBehindBreak = false;  // the tag before is a break's
  bool _hasHTML = false, _hasBody = false, _hasForm = false;
};

}  // namespace kbx
