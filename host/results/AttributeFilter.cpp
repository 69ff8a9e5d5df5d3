#include "host/results/AttributeFilter.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/objects/NSString.h"

namespace kbx {
namespace {

constexpr std::string_view kExtra = "org_ferncase_mail_";
constexpr std::array<std::string_view, 3> kBodies{"kMDItemTextContent", "kMDItemHTMLContent",
                                                  "kMDItemHTMLContentData"};

}  // namespace

Ref<NSDictionary> AttributeFilter::wantedOf(NSDictionary* attributes) const {
  auto wanted = NSMutableDictionary::dictionary();
  for (const auto& [key, value] : *attributes)
    if (wants(key)) wanted->setObjectForKey(value, key);
  return wanted;
}

bool AttributeFilter::wants(NSObject* key) const {
  auto* text = cast<NSString>(key);
  const std::string name = text ? text->lossyUTF8() : "";
  if (!names.empty()) return std::ranges::find(names, name) != names.end();
  if (!showsExtra && name.starts_with(kExtra)) return false;
  return showsText || std::ranges::find(kBodies, name) == kBodies.end();
}

}  // namespace kbx
