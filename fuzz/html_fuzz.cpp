// Documents of strangers: all become a document, whose canonical form parses back to itself and
// whose text is the same by every road.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/xml/VisibleText.h"
#include "tests/support/Markup.h"

namespace kbx {
namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

Ref<NSXMLDocument> parse(NSData* bytes, std::uint64_t options) {
  Ref<NSError> error;
  auto document = NSXMLDocument::initWithData(bytes, options, &error);
  require((document != nullptr) == (error == nullptr));
  require(document || (bytes->length() == 0 && error->code() == NSXMLParserEmptyDocumentError));
  return document;
}

/// The canonical form of a document; absent when it is empty.
Ref<NSData> form(NSXMLDocument* document) {
  auto text = document->canonicalXMLStringPreservingComments(false);
  return text->length() == 0 ? nullptr : text->UTF8Data();
}

void checkForm(NSXMLDocument* document, std::uint64_t options) {
  auto first = form(document);
  if (first) require(isEqual(form(parse(first, options)), first));
}

}  // namespace
}  // namespace kbx

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace kbx;
  auto input = NSData::dataWithBytes(bytes, size);
  auto document = parse(input, test::kTidyBoth);
  if (!document) {
    require(visibleText(input)->length() == 0);
    return 0;
  }
  checkForm(document, test::kTidyBoth);
  checkForm(parse(input, test::kTidyHTML), test::kTidyHTML);
  require(document->XMLStringWithOptions(NSXMLNodePrettyPrint)->length() > 0);
  require(visibleText(input)->view() == test::visibleText(input->view()));
  return 0;
}
