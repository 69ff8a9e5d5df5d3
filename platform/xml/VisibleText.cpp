#include "platform/xml/VisibleText.h"

#include "platform/html/HTMLTextSink.h"
#include "platform/markup/CanonicalXML.h"
#include "platform/markup/MarkupText.h"
#include "platform/markup/XHTMLVisibility.h"
#include "platform/markup/XMLReader.h"

namespace kbx {
namespace {

/// Collects the visible text of XHTML; ends the reading of anything else.
class XHTMLTextHandler final : public XMLHandler {
 public:
  bool startElement(const XMLName& name, std::span<const XMLAttribute>,
                    std::span<const XMLNamespaceDeclaration>) override {
    if (_visibility.depth() == 0 && !isXHTMLRoot(name)) return false;
    const bool isNoframes = name.is(kXHTMLNamespace, "noframes");
    if (isNoframes && !_visibility.isHidden()) _text.append(' ');
    _visibility.start(name);
    return true;
  }
  void endElement() override { _visibility.end(); }
  void text(std::string_view piece) override {
    if (!_visibility.isHidden()) _text.append(piece);
  }

  Ref<NSData> take() { return _text.take(); }

 private:
  GrowingBytes _text;
  XHTMLVisibility _visibility;
};

Ref<NSData> textOfHTML(std::string_view text) {
  HTMLTextSink sink(text.size() / 4);
  HTMLTreeBuilder<HTMLTextSink>(text, sink).build();
  return sink.take();
}

/// XML that is no XHTML is HTML once its canonical form is parsed.
Ref<NSData> textOfOtherXML(std::string_view text) {
  Arena values;
  CanonicalXMLWriter form(false);
  if (XMLReader(text, values, form).read() != XMLReader::Outcome::Document) return textOfHTML(text);
  auto bytes = form.take();
  return textOfHTML(bytes->view());
}

}  // namespace

Ref<NSData> visibleText(NSData* bytes) {
  const MarkupText markup = markupText(bytes);
  Arena values;
  XHTMLTextHandler handler;
  switch (XMLReader(markup.text, values, handler).read()) {
    case XMLReader::Outcome::Document:
      return handler.take();
    case XMLReader::Outcome::NoRoot:
      return NSData::data();
    case XMLReader::Outcome::Stopped:
      return textOfOtherXML(markup.text);
    default:
      return textOfHTML(markup.text);
  }
}

}  // namespace kbx
