// HTMLTags: the elements of HTML and what the tree builder must know of each.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/markup/Characters.h"

namespace kbx {

/// The known elements, in the order of the table in HTMLTags.cpp. A name that is not there gets a
/// number of its own from the tree builder, from KnownCount on.
enum class HTMLTag : std::uint32_t {
  Unknown,
  A,
  Abbr,
  Acronym,
  Address,
  Applet,
  Area,
  Article,
  Aside,
  Audio,
  B,
  Base,
  Basefont,
  Bdi,
  Bdo,
  Bgsound,
  Big,
  Blockquote,
  Body,
  Br,
  Button,
  Canvas,
  Caption,
  Center,
  Cite,
  Code,
  Col,
  Colgroup,
  Data,
  Datalist,
  Dd,
  Del,
  Details,
  Dfn,
  Dialog,
  Dir,
  Div,
  Dl,
  Dt,
  Em,
  Embed,
  Fieldset,
  Figcaption,
  Figure,
  Font,
  Footer,
  Form,
  Frame,
  Frameset,
  H1,
  H2,
  H3,
  H4,
  H5,
  H6,
  Head,
  Header,
  Hgroup,
  Hr,
  Html,
  I,
  Iframe,
  Img,
  Input,
  Ins,
  Kbd,
  Keygen,
  Label,
  Legend,
  Li,
  Link,
  Listing,
  Main,
  Map,
  Mark,
  Marquee,
  Math,
  Menu,
  Meta,
  Nav,
  Nobr,
  Noembed,
  Noframes,
  Noscript,
  Object,
  Ol,
  Optgroup,
  Option,
  Output,
  P,
  Param,
  Picture,
  Plaintext,
  Pre,
  Q,
  Rb,
  Rp,
  Rt,
  Ruby,
  S,
  Samp,
  Script,
  Search,
  Section,
  Select,
  Small,
  Source,
  Span,
  Strike,
  Strong,
  Style,
  Sub,
  Summary,
  Sup,
  Svg,
  Table,
  Tbody,
  Td,
  Template,
  Textarea,
  Tfoot,
  Th,
  Thead,
  Time,
  Title,
  Tr,
  Track,
  Tt,
  U,
  Ul,
  Var,
  Video,
  Wbr,
  Xmp,
  KnownCount
};

/// Which open elements a start tag closes, or what else it does.
enum class HTMLAction : std::uint8_t {
  None,
  Html,
  Head,
  Body,
  HeadVoid,
  Title,
  Style,
  Script,
  Break,
  Raw,
  EscapableRaw,
  PlainText,
  Pre,
  Form,
  Anchor,
  NoBreak,
  Button,
  Item,
  Definition,
  Heading,
  Option,
  OptionGroup,
  Section,
  Row,
  Cell,
  NoFrames,
  Foreign,
};

/// Properties of an element.
enum HTMLTraits : std::uint16_t {
  kInline = 0,
  kVoid = 1,             // has neither content nor an end tag
  kBlock = 2,            // is parted from its neighbours by a line, and stops inline end tags
  kClosesParagraph = 4,  // its start tag ends an open paragraph
  kSpecial = 8,          // stops inline end tags without being a block
  kScope = 16,           // end tags inside do not reach elements outside
  kTableScope = 32,      // rows and cells inside belong to it
  kWall = 64,            // nothing inside reaches out, not even the end tag of a table
  kItemScope = 128,      // list items inside belong to it
  kIsTransparentToItems = 256,  // an item inside it still ends the item around it
  kPreserves = 512,             // keeps its white space
  kLeavesForeign = 1024,        // cannot be inside SVG or MathML, and so ends them
};

struct HTMLTagInfo {
  std::string_view name;
  std::uint16_t traits = kInline;
  HTMLAction action = HTMLAction::None;

  bool has(HTMLTraits trait) const { return (traits & trait) != 0; }
};

/// What is known of an element; the entry of Unknown for one that is not known.
const HTMLTagInfo& infoOf(HTMLTag tag);

/// The element of a name in letters of any case.
HTMLTag tagNamed(std::string_view name);

}  // namespace kbx
