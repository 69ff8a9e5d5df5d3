#include "platform/markup/MarkupEncoding.h"

#include <algorithm>
#include <string>

#include "platform/markup/Characters.h"
#include "platform/markup/UTF8Decoder.h"

namespace kbx {

const char* const MarkupEncoding::kUTF8 = "UTF-8";
const char* const MarkupEncoding::kWindows1252 = "windows-1252";

namespace {

constexpr std::size_t kDeclarationSpace = 8192;
constexpr std::string_view kISO2022JP = "iso-2022-jp";

struct Charset {
  const char* name;         // of the conversion library
  std::string_view labels;  // what documents call it: small letters, a blank around each
};

// By the web's list of labels, without the charsets that it refuses. Every one keeps ASCII, so that
// a lie about the charset cannot turn markup into something else.
constexpr Charset kCharsets[] = {
    {"UTF-8", " utf-8 utf8 unicode-1-1-utf-8 x-unicode20utf8 unicode11utf8 unicode20utf8 "},
    {"windows-1252",
     " windows-1252 cp1252 x-cp1252 iso-8859-1 iso8859-1 iso88591 iso_8859-1 latin1 l1 ibm819 "
     "cp819 ascii us-ascii ansi_x3.4-1968 iso-ir-100 csisolatin1 iso_8859-1:1987 "},
    {"ibm-866_P100-1995", " ibm866 cp866 866 csibm866 "},
    {"iso-8859-2", " iso-8859-2 iso8859-2 iso88592 iso_8859-2 latin2 l2 csisolatin2 iso-ir-101 "},
    {"iso-8859-3", " iso-8859-3 iso8859-3 iso88593 iso_8859-3 latin3 l3 csisolatin3 iso-ir-109 "},
    {"iso-8859-4", " iso-8859-4 iso8859-4 iso88594 iso_8859-4 latin4 l4 csisolatin4 iso-ir-110 "},
    {"iso-8859-5",
     " iso-8859-5 iso8859-5 iso88595 iso_8859-5 cyrillic csisolatincyrillic iso-ir-144 "},
    {"iso-8859-6",
     " iso-8859-6 iso8859-6 iso88596 iso_8859-6 arabic ecma-114 asmo-708 iso-8859-6-e "
     "iso-8859-6-i csisolatinarabic iso-ir-127 "},
    {"iso-8859-7",
     " iso-8859-7 iso8859-7 iso88597 iso_8859-7 greek greek8 sun_eu_greek elot_928 ecma-118 "
     "csisolatingreek iso-ir-126 "},
    {"iso-8859-8",
     " iso-8859-8 iso8859-8 iso88598 iso_8859-8 hebrew visual logical iso-8859-8-e iso-8859-8-i "
     "csisolatinhebrew iso-ir-138 "},
    {"iso-8859-10", " iso-8859-10 iso8859-10 iso885910 latin6 l6 csisolatin6 iso-ir-157 "},
    {"iso-8859-13", " iso-8859-13 iso8859-13 iso885913 "},
    {"iso-8859-14", " iso-8859-14 iso8859-14 iso885914 "},
    {"iso-8859-15", " iso-8859-15 iso8859-15 iso885915 iso_8859-15 latin9 latin-9 l9 "},
    {"KOI8-R", " koi8-r koi8 koi koi8_r cskoi8r "},
    {"KOI8-U", " koi8-u koi8-ru "},
    {"macintosh", " macintosh mac x-mac-roman csmacintosh "},
    {"x-mac-cyrillic", " x-mac-cyrillic x-mac-ukrainian "},
    {"windows-874", " windows-874 dos-874 tis-620 iso-8859-11 iso8859-11 iso885911 "},
    {"windows-1250", " windows-1250 cp1250 x-cp1250 "},
    {"windows-1251", " windows-1251 cp1251 x-cp1251 "},
    {"windows-1253", " windows-1253 cp1253 x-cp1253 "},
    {"windows-1254",
     " windows-1254 cp1254 x-cp1254 iso-8859-9 iso8859-9 iso88599 iso_8859-9 latin5 l5 "
     "csisolatin5 iso-ir-148 "},
    {"windows-1255", " windows-1255 cp1255 x-cp1255 "},
    {"windows-1256", " windows-1256 cp1256 x-cp1256 "},
    {"windows-1257", " windows-1257 cp1257 x-cp1257 "},
    {"windows-1258", " windows-1258 cp1258 x-cp1258 "},
    {"gb18030",
     " gb18030 gbk gb2312 gb_2312 gb_2312-80 x-gbk cp936 chinese csgb2312 iso-ir-58 euc-cn "
     "x-euc-cn "
     "windows-936 "},
    {"Big5-HKSCS", " big5 big5-hkscs cn-big5 x-x-big5 csbig5 big5-eten cp950 "},
    {"EUC-JP", " euc-jp x-euc-jp x-euc cseucpkdfmtjapanese "},
    {"windows-31j",
     " shift_jis shift-jis sjis x-sjis ms932 ms_kanji csshiftjis windows-31j cp932 windows-932 "},
    {"windows-949",
     " euc-kr ks_c_5601-1987 ks_c_5601-1989 ksc5601 ksc_5601 korean windows-949 cp949 cseuckr "
     "csksc56011987 iso-ir-149 "},
    {"ISO-2022-JP", " iso-2022-jp csiso2022jp iso-2022-jp-1 iso-2022-jp-2 "},
};

const char* charsetOfLabel(std::string_view label) {
  if (label.empty() || label.size() > 40) return nullptr;
  std::string wanted = " ";
  for (const char c : label) wanted += asciiLower(c);
  wanted += ' ';
  for (const Charset& charset : kCharsets)
    if (charset.labels.find(wanted) != std::string_view::npos) return charset.name;
  return nullptr;
}

std::size_t findLowered(std::string_view text, std::string_view lower, std::size_t start) {
  for (std::size_t i = start; i + lower.size() <= text.size(); ++i)
    if (equalsIgnoringASCIICase(text.substr(i, lower.size()), lower)) return i;
  return std::string_view::npos;
}

/// The value behind `name` and an equals sign; empty without one.
std::string_view valueBehind(std::string_view text, std::string_view name) {
  for (std::size_t i = 0; (i = findLowered(text, name, i)) != text.npos;) {
    i += name.size();
    std::size_t start = std::min(text.find_first_not_of(" \t\n\r\f", i), text.size());
    if (start == text.size() || text[start] != '=') continue;
    start = text.find_first_not_of(" \t\n\r\f\"'", start + 1);
    if (start == text.npos) return {};
    return text.substr(start, text.find_first_of(" \t\n\r\f\"';>/?", start) - start);
  }
  return {};
}

std::string_view declaredByXML(std::string_view head) {
  if (!head.starts_with("<?xml")) return {};
  return valueBehind(head.substr(0, head.find("?>")), "encoding");
}

/// Of the first meta tag that names a charset which is known; absent without one.
const char* charsetByMeta(std::string_view head) {
  for (std::size_t i = 0; (i = head.find('<', i)) != head.npos; ++i) {
    const std::string_view tag = head.substr(i);
    if (tag.starts_with("<!--")) {
      i = head.find("-->", i + 2);
      if (i == head.npos) return nullptr;
    } else if (equalsIgnoringASCIICase(tag.substr(0, 5), "<meta")) {
      const auto label = valueBehind(tag.substr(0, tag.find('>')), "charset");
      if (const char* charset = charsetOfLabel(label)) return charset;
    }
  }
  return nullptr;
}

const char* declaredCharset(std::string_view bytes) {
  const std::string_view head = bytes.substr(0, kDeclarationSpace);
  if (const char* charset = charsetOfLabel(declaredByXML(head))) return charset;
  return charsetByMeta(head);
}

MarkupEncoding encodingByMark(std::string_view bytes) {
  struct Mark {
    std::string_view bytes;
    const char* charset;
  };
  // The longer marks first: one of them begins with another.
  static const Mark kMarks[] = {{"\xEF\xBB\xBF", MarkupEncoding::kUTF8},
                                {std::string_view("\xFF\xFE\0\0", 4), "UTF-32LE"},
                                {std::string_view("\0\0\xFE\xFF", 4), "UTF-32BE"},
                                {"\xFF\xFE", "UTF-16LE"},
                                {"\xFE\xFF", "UTF-16BE"}};
  for (const Mark& mark : kMarks)
    if (bytes.starts_with(mark.bytes)) return {mark.charset, mark.bytes.size()};
  return {nullptr};
}

}  // namespace

MarkupEncoding encodingOfMarkup(std::string_view bytes, const ByteSurvey& survey) {
  if (const auto marked = encodingByMark(bytes); marked.charset) return marked;
  const bool isASCII = survey.nonASCIICount == 0;
  if (survey.isUTF8 && (!isASCII || !survey.hasEscape)) return {MarkupEncoding::kUTF8};
  const char* const declared = declaredCharset(bytes);
  if (!declared) return {MarkupEncoding::kWindows1252};
  const std::string_view name = declared;
  if (equalsIgnoringASCIICase(name, kISO2022JP))
    return {survey.hasEscape ? declared : MarkupEncoding::kWindows1252};
  if (name == MarkupEncoding::kUTF8) return {MarkupEncoding::kUTF8};
  return {name == MarkupEncoding::kWindows1252 ? MarkupEncoding::kWindows1252 : declared};
}

ByteSurvey surveyBytes(std::string_view bytes) {
  ByteSurvey survey;
  const char* p = bytes.data();
  const char* const end = p + bytes.size();
  while (p != end) {
    const auto byte = static_cast<std::uint8_t>(*p);
    if (isPlainASCII(*p)) {
      p = skipPlainASCII(p, end);
      continue;
    }
    if (byte < 0x80) {
      survey.isClean = false;
      survey.hasEscape |= byte == 0x1B;
      ++p;
      continue;
    }
    if (const std::size_t length = plainLength(p, end)) {
      survey.nonASCIICount += length;
      p += length;
      continue;
    }
    const DecodedCharacter next = decodeUTF8(p, end);
    survey.nonASCIICount += next.length;
    survey.isUTF8 &= next.isValid;
    survey.isClean &= next.isValid && next.value > 0x9F && !isNonCharacter(next.value);
    p += next.length;
  }
  return survey;
}

}  // namespace kbx
