#include "platform/xml/MarkupParser.h"

#include "platform/html/HTMLTreeSink.h"
#include "platform/markup/MarkupText.h"
#include "platform/markup/XMLTreeHandler.h"

namespace kbx {
namespace {

std::shared_ptr<XMLTree> parseXML(const MarkupText& markup, bool isXHTMLOnly) {
  auto tree = std::make_shared<XMLTree>();
  tree->source = markup.owner;
  XMLTreeHandler handler(*tree, markup.text, isXHTMLOnly);
  switch (XMLReader(markup.text, tree->arena, handler).read()) {
    case XMLReader::Outcome::Document:
      return tree;
    case XMLReader::Outcome::NoRoot:
      return isXHTMLOnly ? nullptr : tree;
    default:
      return nullptr;
  }
}

std::shared_ptr<XMLTree> parseHTML(const MarkupText& markup) {
  auto tree = std::make_shared<XMLTree>();
  tree->source = markup.owner;
  HTMLTreeSink sink(*tree, markup.text);
  HTMLTreeBuilder<HTMLTreeSink>(markup.text, sink).build();
  sink.finish();
  return tree;
}

}  // namespace

std::shared_ptr<XMLTree> parseMarkup(NSData* bytes, Tidying tidying) {
  const MarkupText markup = markupText(bytes);
  if (auto tree = parseXML(markup, tidying == Tidying::HTML)) return tree;
  return tidying == Tidying::None ? nullptr : parseHTML(markup);
}

}  // namespace kbx
