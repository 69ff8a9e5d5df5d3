#include "platform/propertylists/XMLPropertyListReader.h"

#include <libxml/parser.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include "platform/propertylists/PlainXMLPropertyList.h"
#include "platform/propertylists/XMLPropertyListTree.h"

namespace kbx {
namespace {

// How many bytes the parser gets at a time.
constexpr std::size_t kChunk = 4096;
// How many bytes it may hold back until their end has come. A tag with very many attributes costs
// the square of them; comments and CDATA sections are looked through again with every chunk.
constexpr std::ptrdiff_t kLongestTag = 32 * 1024;
constexpr std::ptrdiff_t kLongestSection = 256 * 1024;

std::string_view view(const xmlChar* text, std::size_t length) {
  return {reinterpret_cast<const char*>(text), length};
}

std::string_view view(const xmlChar* text) { return reinterpret_cast<const char*>(text); }

void ignoreMessage(void*, const char*, ...) {}

/// Silences, on this thread, what the library would print of troubles with an encoding.
class QuietXML {
 public:
  QuietXML() {
    xmlSetStructuredErrorFunc(nullptr, [](void*, xmlErrorPtr) {});
    xmlSetGenericErrorFunc(nullptr, ignoreMessage);
  }
  ~QuietXML() {
    xmlSetStructuredErrorFunc(_structuredContext, _structured);
    xmlSetGenericErrorFunc(_genericContext, _generic);
  }
  QuietXML(const QuietXML&) = delete;
  QuietXML& operator=(const QuietXML&) = delete;

 private:
  const xmlStructuredErrorFunc _structured = xmlStructuredError;
  void* const _structuredContext = xmlStructuredErrorContext;
  const xmlGenericErrorFunc _generic = xmlGenericError;
  void* const _genericContext = xmlGenericErrorContext;
};

/// Feeds a text to the parser, and what the parser finds to a tree.
class Reader {
 public:
  explicit Reader(bool isMutable) : _tree(isMutable) {}
  PropertyListReading read(std::string_view text);

 private:
  struct FreeParser {
    void operator()(xmlParserCtxtPtr parser) const {
      // The parser notes declarations in a document of its own, which it does not free.
      xmlDocPtr declarations = parser->myDoc;
      parser->myDoc = nullptr;
      xmlFreeParserCtxt(parser);
      xmlFreeDoc(declarations);
    }
  };

  static xmlSAXHandler handlers();
  template <class Action>
  static void run(void* context, Action action);
  static void refuseDeclaration(void* context);
  void parse(std::string_view text);
  void fail(std::string_view what, int line);
  int line() const { return _parser->input ? _parser->input->line : 0; }
  bool isStuck() const {
    if (!_parser->input) return false;
    const auto waiting = _parser->input->end - _parser->input->cur;
    return waiting > (_parser->instate == XML_PARSER_START_TAG ? kLongestTag : kLongestSection);
  }

  XMLPropertyListTree _tree;
  std::unique_ptr<xmlParserCtxt, FreeParser> _parser;
  std::string _fault;
  std::exception_ptr _thrown;  // must not pass through the parser's own frames
};

void Reader::fail(std::string_view what, int line) {
  if (!_fault.empty()) return;  // the first one is the cause of the others
  _fault = std::string(what) + " in line " + std::to_string(line);
  xmlStopParser(_parser.get());
}

template <class Action>
void Reader::run(void* context, Action action) {
  auto* reader = static_cast<Reader*>(context);
  if (reader->_thrown || !reader->_fault.empty()) return;
  try {
    if (auto fault = action(reader->_tree)) reader->fail(*fault, reader->line());
  } catch (...) {
    reader->_thrown = std::current_exception();
    xmlStopParser(reader->_parser.get());
  }
}

/// Declarations of entities and attributes could make much out of little.
void Reader::refuseDeclaration(void* context) {
  run(context, [](auto&) { return std::optional<std::string>("a declaration of its own"); });
}

xmlSAXHandler Reader::handlers() {
  xmlSAXHandler sax{};
  sax.initialized = XML_SAX2_MAGIC;
  sax.startElementNs = [](void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar*,
                          int, const xmlChar**, int, int, const xmlChar**) {
    run(context, [&](auto& tree) {
      return tree.start(prefix ? std::string(view(prefix)).append(":").append(view(name))
                               : std::string(view(name)));
    });
  };
  sax.endElementNs = [](void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
    run(context, [](auto& tree) { return tree.end(); });
  };
  sax.characters = [](void* context, const xmlChar* text, int length) {
    run(context,
        [&](auto& tree) { return tree.text(view(text, static_cast<std::size_t>(length))); });
  };
  sax.ignorableWhitespace = sax.characters;
  sax.cdataBlock = sax.characters;
  sax.reference = [](void* context, const xmlChar* name) {
    run(context, [&](auto&) {
      return std::optional("the unknown entity “" + std::string(view(name)) + "”");
    });
  };
  sax.entityDecl = [](void* context, const xmlChar*, int, const xmlChar*, const xmlChar*,
                      xmlChar*) { refuseDeclaration(context); };
  sax.attributeDecl = [](void* context, const xmlChar*, const xmlChar*, int, int, const xmlChar*,
                         xmlEnumerationPtr values) {
    xmlFreeEnumeration(values);
    refuseDeclaration(context);
  };
  sax.serror = [](void* context, xmlErrorPtr error) {
    if (error->level == XML_ERR_WARNING) return;
    std::string_view text = error->message ? error->message : "unknown fault";
    while (text.ends_with('\n') || text.ends_with('.')) text.remove_suffix(1);
    run(context, [&](auto&) { return std::optional(std::string(text)); });
  };
  return sax;
}

void Reader::parse(std::string_view text) {
  xmlSAXHandler sax = handlers();
  // Gets no bytes yet: it would call the handlers, which need the parser.
  _parser.reset(xmlCreatePushParserCtxt(&sax, this, nullptr, 0, nullptr));
  if (!_parser) throw std::bad_alloc();
  xmlCtxtUseOptions(_parser.get(), XML_PARSE_NONET);
  for (std::size_t at = 0; at < text.size() && _fault.empty() && !_thrown; at += kChunk) {
    const auto chunk = text.substr(at, kChunk);
    xmlParseChunk(_parser.get(), chunk.data(), static_cast<int>(chunk.size()), 0);
    if (isStuck()) fail("a tag, a comment or a CDATA section is too long", line());
  }
  if (_fault.empty() && !_thrown) xmlParseChunk(_parser.get(), nullptr, 0, 1);
}

PropertyListReading Reader::read(std::string_view text) {
  parse(text);
  if (_thrown) std::rethrow_exception(_thrown);
  if (_fault.empty() && !_parser->wellFormed) fail("the XML is not well-formed", line());
  if (_fault.empty() && !_tree.root()) fail("there is no value", line());
  if (!_fault.empty()) return {nullptr, std::move(_fault)};
  return {_tree.root(), {}};
}

}  // namespace

PropertyListReading propertyListFromXML(std::string_view text, bool isMutable) {
  if (text.empty()) return {nullptr, "there are no bytes"};
  if (auto list = propertyListFromPlainXML(text, isMutable)) return {std::move(list), {}};
  xmlInitParser();
  QuietXML quiet;
  return Reader(isMutable).read(text);
}

}  // namespace kbx
