#include "platform/html/HTMLTags.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <iterator>

namespace kbx {
namespace {

using enum HTMLAction;

constexpr std::uint16_t kParagraphBlock = kBlock | kClosesParagraph;
constexpr std::uint16_t kList = kParagraphBlock | kItemScope;
constexpr std::uint16_t kIslandBlock = kBlock | kScope;
constexpr std::uint16_t kHeading = kParagraphBlock | kLeavesForeign;
constexpr std::uint16_t kPreformatted = kParagraphBlock | kPreserves;

constexpr HTMLTagInfo kTags[] = {
    {""},
    {"a", kInline, Anchor},
    {"abbr"},
    {"acronym"},
    {"address", kParagraphBlock | kIsTransparentToItems},
    {"applet", kSpecial | kScope},
    {"area", kVoid},
    {"article", kParagraphBlock},
    {"aside", kParagraphBlock},
    {"audio"},
    {"b", kLeavesForeign},
    {"base", kVoid, HeadVoid},
    {"basefont", kVoid},
    {"bdi"},
    {"bdo"},
    {"bgsound", kVoid},
    {"big", kLeavesForeign},
    {"blockquote", kParagraphBlock | kLeavesForeign},
    {"body", kBlock | kLeavesForeign, Body},
    {"br", kVoid | kLeavesForeign, Break},
    {"button", kSpecial, Button},
    {"canvas"},
    {"caption", kIslandBlock, Section},
    {"center", kParagraphBlock | kLeavesForeign},
    {"cite"},
    {"code", kLeavesForeign},
    {"col", kVoid},
    {"colgroup", kBlock, Section},
    {"data"},
    {"datalist"},
    {"dd", kParagraphBlock | kIsTransparentToItems | kLeavesForeign, Definition},
    {"del"},
    {"details", kParagraphBlock},
    {"dfn"},
    {"dialog", kParagraphBlock},
    {"dir", kList},
    {"div", kParagraphBlock | kIsTransparentToItems | kLeavesForeign},
    {"dl", kList | kLeavesForeign},
    {"dt", kParagraphBlock | kIsTransparentToItems | kLeavesForeign, Definition},
    {"em", kLeavesForeign},
    {"embed", kVoid | kLeavesForeign},
    {"fieldset", kParagraphBlock},
    {"figcaption", kParagraphBlock},
    {"figure", kParagraphBlock},
    {"font"},
    {"footer", kParagraphBlock},
    {"form", kParagraphBlock, Form},
    {"frame", kVoid},
    {"frameset", kBlock},
    {"h1", kHeading, Heading},
    {"h2", kHeading, Heading},
    {"h3", kHeading, Heading},
    {"h4", kHeading, Heading},
    {"h5", kHeading, Heading},
    {"h6", kHeading, Heading},
    {"head", kBlock | kLeavesForeign, Head},
    {"header", kParagraphBlock},
    {"hgroup", kParagraphBlock},
    {"hr", kVoid | kParagraphBlock | kLeavesForeign},
    {"html", kBlock, Html},
    {"i", kLeavesForeign},
    {"iframe", kSpecial},
    {"img", kVoid | kLeavesForeign},
    {"input", kVoid},
    {"ins"},
    {"kbd"},
    {"keygen", kVoid},
    {"label"},
    {"legend", kBlock},
    {"li", kParagraphBlock | kIsTransparentToItems | kLeavesForeign, Item},
    {"link", kVoid, HeadVoid},
    {"listing", kPreformatted | kLeavesForeign, Pre},
    {"main", kParagraphBlock},
    {"map"},
    {"mark"},
    {"marquee", kIslandBlock},
    {"math", kInline, Foreign},
    {"menu", kList | kLeavesForeign},
    {"meta", kVoid | kLeavesForeign, HeadVoid},
    {"nav", kParagraphBlock},
    {"nobr", kLeavesForeign, NoBreak},
    {"noembed", kSpecial},
    {"noframes", kIslandBlock | kTableScope | kWall | kItemScope, NoFrames},
    {"noscript", kSpecial},
    {"object", kSpecial | kScope},
    {"ol", kList | kLeavesForeign},
    {"optgroup", kBlock, OptionGroup},
    {"option", kBlock, Option},
    {"output"},
    {"p", kParagraphBlock | kIsTransparentToItems | kLeavesForeign},
    {"param", kVoid},
    {"picture"},
    {"plaintext", kPreformatted, PlainText},
    {"pre", kPreformatted | kLeavesForeign, Pre},
    {"q"},
    {"rb"},
    {"rp"},
    {"rt"},
    {"ruby", kLeavesForeign},
    {"s", kLeavesForeign},
    {"samp"},
    {"script", kSpecial, Script},
    {"search", kParagraphBlock},
    {"section", kParagraphBlock},
    {"select", kSpecial},
    {"small", kLeavesForeign},
    {"source", kVoid},
    {"span", kLeavesForeign},
    {"strike", kLeavesForeign},
    {"strong", kLeavesForeign},
    {"style", kSpecial, Style},
    {"sub", kLeavesForeign},
    {"summary", kParagraphBlock},
    {"sup", kLeavesForeign},
    {"svg", kInline, Foreign},
    {"table", kParagraphBlock | kScope | kTableScope | kItemScope | kLeavesForeign},
    {"tbody", kBlock, Section},
    {"td", kIslandBlock | kItemScope, Cell},
    {"template", kIslandBlock | kItemScope},
    {"textarea", kSpecial | kPreserves, EscapableRaw},
    {"tfoot", kBlock, Section},
    {"th", kIslandBlock | kItemScope, Cell},
    {"thead", kBlock, Section},
    {"time"},
    {"title", kSpecial, Title},
    {"tr", kBlock, Row},
    {"track", kVoid},
    {"tt", kLeavesForeign},
    {"u", kLeavesForeign},
    {"ul", kList | kLeavesForeign},
    {"var", kLeavesForeign},
    {"video"},
    {"wbr", kVoid},
    {"xmp", kPreformatted, Raw},
};
static_assert(std::size(kTags) == static_cast<std::size_t>(HTMLTag::KnownCount));

constexpr std::size_t kLongestName = 10;
constexpr std::size_t kSlots = 1024;

constexpr std::size_t slotOf(std::string_view name) {
  std::uint32_t hash = static_cast<std::uint32_t>(name.size());
  for (const char c : name) hash = hash * 31 + static_cast<std::uint8_t>(asciiLower(c));
  return (hash ^ (hash >> 9)) % kSlots;
}

consteval auto slots() {
  std::array<std::uint8_t, kSlots> slots{};
  for (std::size_t i = 1; i < std::size(kTags); ++i) {
    std::size_t slot = slotOf(kTags[i].name);
    while (slots[slot] != 0) slot = (slot + 1) % kSlots;
    slots[slot] = static_cast<std::uint8_t>(i);
  }
  return slots;
}

constexpr auto kSlotTable = slots();

}  // namespace

const HTMLTagInfo& infoOf(HTMLTag tag) {
  return kTags[tag < HTMLTag::KnownCount ? static_cast<std::size_t>(tag) : 0];
}

HTMLTag tagNamed(std::string_view name) {
  if (name.size() > kLongestName) return HTMLTag::Unknown;
  for (std::size_t slot = slotOf(name); kSlotTable[slot] != 0; slot = (slot + 1) % kSlots)
    if (equalsIgnoringASCIICase(name, kTags[kSlotTable[slot]].name))
      return static_cast<HTMLTag>(kSlotTable[slot]);
  return HTMLTag::Unknown;
}

}  // namespace kbx
