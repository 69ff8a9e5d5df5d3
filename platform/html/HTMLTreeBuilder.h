// HTMLTreeBuilder: the elements of an HTML document from its tags, made tidy on the way.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/html/HTMLTags.h"
#include "platform/html/HTMLTextFlow.h"
#include "platform/html/HTMLTokenizer.h"
#include "platform/markup/XMLTree.h"

namespace kbx {

/// In which vocabulary an element is.
enum class HTMLVocabulary : std::uint8_t { HTML, SVG, MathML };

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
      : _sink(sink), _flow(sink), _tokens(text, sink.attributes()) {
    _lastOpen.resize(static_cast<std::size_t>(HTMLTag::KnownCount), kNone);
    _open.reserve(64);
    _open.push_back({});
    push(sink.html(), HTMLTag::Html, HTMLVocabulary::HTML);
    push(sink.body(), HTMLTag::Body, HTMLVocabulary::HTML);
    _open.back().setAllBarriers(kBodyIndex);
  }

  void build() {
    for (;;) {
      const HTMLToken token = _tokens.next(isForeign());
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
    }
  }

 private:
  using Index = std::uint16_t;  // of an open element; the first is no element
  static constexpr Index kNone = 0;
  static constexpr Index kBodyIndex = 2;

  /// An open element, and where the nearest ones around it are that end what reaches outwards.
  /// All answers are at hand, so that no tag makes anybody search the open elements.
  struct OpenElement {
    Place place{};
    HTMLTag tag = HTMLTag::Unknown;
    HTMLVocabulary vocabulary = HTMLVocabulary::HTML;
    bool isIntegration = false;  // HTML may stand in this element of another vocabulary
    bool preserves = false;
    Index before = kNone;  // the open element of the same tag around this one
    Index block = kNone, scope = kNone, itemScope = kNone, items = kNone, table = kNone,
          wall = kNone;

    void setAllBarriers(Index index) { block = scope = itemScope = items = table = wall = index; }
  };

  // ---- The open elements ----

  OpenElement& top() { return _open.back(); }
  Place place() { return top().place; }
  Index topIndex() const { return static_cast<Index>(_open.size() - 1); }
  bool isFull() const { return topIndex() >= kDeepestElement; }
  bool isForeign() { return top().vocabulary != HTMLVocabulary::HTML && !top().isIntegration; }
  Index lastOpen(HTMLTag tag) const { return _lastOpen[static_cast<std::size_t>(tag)]; }

  void push(Place place, HTMLTag tag, HTMLVocabulary vocabulary) {
    OpenElement element = top();
    element.place = place;
    element.tag = tag;
    element.vocabulary = vocabulary;
    element.isIntegration = false;
    element.before = lastOpen(tag);
    const auto index = static_cast<Index>(_open.size());
    if (vocabulary == HTMLVocabulary::HTML) setBarriers(element, infoOf(tag), index);
    _lastOpen[static_cast<std::size_t>(tag)] = index;
    _open.push_back(element);
  }

  static void setBarriers(OpenElement& element, const HTMLTagInfo& info, Index index) {
    element.preserves |= info.has(kPreserves);
    const bool isSpecial = info.has(kBlock) || info.has(kSpecial);
    if (isSpecial) element.block = index;
    if (isSpecial && !info.has(kIsTransparentToItems)) element.items = index;
    if (info.has(kScope)) element.scope = index;
    if (info.has(kScope) || info.has(kItemScope)) element.itemScope = index;
    if (info.has(kTableScope)) element.table = index;
    if (info.has(kWall)) element.wall = index;
  }

  void pop() {
    const OpenElement element = top();
    _open.pop_back();
    _lastOpen[static_cast<std::size_t>(element.tag)] = element.before;
    if (element.vocabulary != HTMLVocabulary::HTML) return;
    if (element.tag == HTMLTag::Form) _hasForm = false;
    if (element.tag == HTMLTag::Noframes) endFrameless();
  }

  /// Ends the element at the index and all that is open inside it.
  void popTo(Index index) {
    while (_open.size() > index) pop();
  }

  /// Ends the innermost open element of the tag if no barrier is around it.
  bool popOpen(HTMLTag tag, Index barrier) {
    const Index index = lastOpen(tag);
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
    if (top().preserves)
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
    popTo(kBodyIndex + 1);
    blockEnd();
  }

  // ---- Start tags ----

  void startTag(const HTMLToken& token) {
    const HTMLTagInfo& info = infoOf(token.tag);
    if (isForeign() && info.action != HTMLAction::Script && info.action != HTMLAction::Style) {
      if (!info.has(kLeavesForeign)) return startForeign(token, top().vocabulary);
      while (isForeign()) pop();
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
    if (isFull()) return;
    const Place parent = _isInHead ? _sink.head() : place();
    _sink.rawText(_sink.append(parent, token, HTMLVocabulary::HTML), content, false);
  }

  void startInBody(const HTMLToken& token, const HTMLTagInfo& info) {
    _isInHead = false;
    if (token.tag == HTMLTag::Form && _hasForm) return blockStart();
    const Index before = topIndex();
    closeBefore(token.tag, info);
    if (info.has(kBlock)) topIndex() < before ? blockEnd() : blockStart();
    if (info.has(kVoid)) return voidElement(token, info);
    if (token.tag == HTMLTag::Unknown) return unknownElement(token);
    if (isFull()) return fullElement(info);
    push(_sink.append(place(), token, HTMLVocabulary::HTML), token.tag, HTMLVocabulary::HTML);
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
    if (!isFull()) _sink.append(place(), token, HTMLVocabulary::HTML);
    if (info.action == HTMLAction::Break) _flow.lineBreak(place());
    if (info.has(kBlock)) blockEnd();
  }

  void unknownElement(const HTMLToken& token) {
    // What XML could not name is left out; what stands inside stays.
    if (!isPlainName(token.name) || isFull()) return;
    const Place element = _sink.append(place(), token, HTMLVocabulary::HTML);
    if (!token.isSelfClosing) push(element, tagOfName(token.name), HTMLVocabulary::HTML);
  }

  void startForeign(const HTMLToken& token, HTMLVocabulary vocabulary) {
    _isInHead = false;
    if (!isPlainName(token.name) || isFull()) return;
    const Place element = _sink.append(place(), token, vocabulary);
    if (token.isSelfClosing) return;
    const HTMLTag tag = token.tag == HTMLTag::Unknown ? tagOfName(token.name) : token.tag;
    push(element, tag, vocabulary);
    top().isIntegration = isIntegrationPoint(token.name, vocabulary);
    if (top().isIntegration) top().block = top().scope = top().items = topIndex();
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
    if (info.has(kClosesParagraph)) popOpen(HTMLTag::P, top().scope);
    switch (info.action) {
      case HTMLAction::Item:
        popOpen(HTMLTag::Li, top().items);
        break;
      case HTMLAction::Definition:
        return popAnyOpen({HTMLTag::Dd, HTMLTag::Dt}, top().items);
      case HTMLAction::Option:
        popOpen(HTMLTag::Option, top().scope);
        break;
      case HTMLAction::OptionGroup:
        return popAnyOpen({HTMLTag::Option, HTMLTag::Optgroup}, top().scope);
      case HTMLAction::Cell:
        return popAnyOpen({HTMLTag::Td, HTMLTag::Th, HTMLTag::Caption}, top().table);
      case HTMLAction::Row:
        return popAnyOpen(
            {HTMLTag::Td, HTMLTag::Th, HTMLTag::Caption, HTMLTag::Colgroup, HTMLTag::Tr},
            top().table);
      case HTMLAction::Section:
        return popAnyOpen({HTMLTag::Td, HTMLTag::Th, HTMLTag::Caption, HTMLTag::Colgroup,
                           HTMLTag::Tr, HTMLTag::Tbody, HTMLTag::Thead, HTMLTag::Tfoot},
                          top().table);
      case HTMLAction::Heading:
        if (infoOf(top().tag).action == HTMLAction::Heading) pop();
        break;
      case HTMLAction::Anchor:
      case HTMLAction::NoBreak:
        popOpen(tag, top().block);
        break;
      case HTMLAction::Button:
        popOpen(tag, top().scope);
        break;
      default:
        break;
    }
  }

  // ---- End tags ----

  void endTag(const HTMLToken& token) {
    const HTMLTagInfo& info = infoOf(token.tag);
    if (info.action == HTMLAction::Break) return startTag(token);
    if (token.tag == HTMLTag::Body || token.tag == HTMLTag::Html) return blockEnd();
    const HTMLTag tag = token.tag == HTMLTag::Unknown ? knownTagOfName(token.name) : token.tag;
    if (info.action == HTMLAction::Heading)
      endHeading();
    else
      popOpen(tag, barrierOfEnd(tag, info));
    if (info.has(kBlock)) blockEnd();
  }

  void endHeading() {
    for (auto i = static_cast<std::uint32_t>(HTMLTag::H1);
         i <= static_cast<std::uint32_t>(HTMLTag::H6); ++i)
      if (popOpen(static_cast<HTMLTag>(i), top().scope)) return;
  }

  Index barrierOfEnd(HTMLTag tag, const HTMLTagInfo& info) {
    // An element's own barrier does not keep its end tag out.
    const Index self = lastOpen(tag);
    const auto outside = [&](Index OpenElement::*barrier) {
      const Index index = top().*barrier;
      return index == self && self > kBodyIndex ? static_cast<Index>(index - 1) : index;
    };
    if (tag == HTMLTag::Noframes || tag == HTMLTag::Table) return outside(&OpenElement::wall);
    switch (info.action) {
      case HTMLAction::Cell:
      case HTMLAction::Row:
      case HTMLAction::Section:
        return top().table;
      case HTMLAction::Item:
      case HTMLAction::Definition:
        return top().itemScope;
      default:
        return outside(info.has(kBlock) || info.has(kSpecial) ? &OpenElement::scope
                                                              : &OpenElement::block);
    }
  }

  // ---- Names that are not known ----

  /// Whether a name can be written in XML and needs no prefix.
  static bool isPlainName(std::string_view name) {
    for (const char c : name)
      if (!isASCIIAlphanumeric(c) && c != '-' && c != '_' && c != '.') return false;
    return true;
  }

  static std::string lowered(std::string_view name) {
    std::string lower(name);
    for (char& c : lower) c = asciiLower(c);
    return lower;
  }

  HTMLTag tagOfName(std::string_view name) {
    const auto [place, isNew] =
        _names.try_emplace(lowered(name), static_cast<HTMLTag>(_lastOpen.size()));
    if (isNew) _lastOpen.push_back(kNone);
    return place->second;
  }

  HTMLTag knownTagOfName(std::string_view name) const {
    if (_names.empty()) return HTMLTag::Unknown;
    const auto found = _names.find(lowered(name));
    return found == _names.end() ? HTMLTag::Unknown : found->second;
  }

  Sink& _sink;
  HTMLTextFlow<Sink> _flow;
  HTMLTokenizer<typename Sink::Attributes> _tokens;
  std::vector<OpenElement> _open;  // from html inwards, behind an empty one
  std::vector<Index> _lastOpen;    // by tag: the innermost open element, or kNone
  std::unordered_map<std::string, HTMLTag> _names;
  std::vector<typename HTMLTextFlow<Sink>::State> _outerFlows;
  bool _isInHead = true;
  bool _hasHTML = false, _hasBody = false, _hasForm = false;
};

}  // namespace kbx
