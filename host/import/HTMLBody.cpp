#include "host/import/HTMLBody.h"

#include "platform/objects/NSData.h"
#include "platform/objects/NSNumber.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"
#include "platform/xml/VisibleText.h"

namespace kbx {
namespace {

/// Absent when there is none; values of other types are no body.
Ref<NSData> htmlBody(NSDictionary* attributes) {
  auto* html = cast<NSString>(attributes->objectForKey(fromCF(kMDItemHTMLContent)));
  if (html) return NSData::dataWithBytes(html->lossyUTF8());
  return cast<NSData>(attributes->objectForKey("kMDItemHTMLContentData"_ns));
}

}  // namespace

void addTextOfHTMLBody(NSMutableDictionary* attributes) {
  NSString* const name = fromCF(kMDItemTextContent);
  if (attributes->objectForKey(name)) return;
  auto html = htmlBody(attributes);
  if (!html) return;
  attributes->setObjectForKey(NSString::stringWithUTF8(visibleText(html)), name);
  attributes->setObjectForKey(NSNumber::numberWithBool(true), "KBXTextContentIsSynthesized"_ns);
}

}  // namespace kbx
