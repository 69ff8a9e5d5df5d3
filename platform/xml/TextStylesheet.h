// TextStylesheet: stylesheets that only replace some elements by a fixed text.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/markup/XMLTree.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// A stylesheet whose output is text and whose templates each match the elements of one name and
/// stand for a fixed text, or for nothing. The built-in templates do the rest: they put out the
/// text of the document. Such a stylesheet is one walk over the document.
class KBX_PLATFORM TextStylesheet {
 public:
  /// Absent for a stylesheet that is anything more, and for what is none.
  static std::optional<TextStylesheet> recognise(NSString* xslt);

  /// The text of the document, in UTF-8: what an XSLT processor makes with the stylesheet.
  Ref<NSData> apply(const XMLTree& document) const;

 private:
  struct Rule {
    std::string uri;
    std::string local;
    std::string text;
  };

  bool takeOutput(const XMLNode& element);
  bool takeTemplate(const XMLNode& element);
  const Rule* ruleFor(const XMLName& name) const;

  std::vector<Rule> _rules;
};

}  // namespace kbx
