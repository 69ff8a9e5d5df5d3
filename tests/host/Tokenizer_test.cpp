#include "host/tokenizer/Tokenizer.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

#include "platform/text/UTF8.h"

namespace kbx {
namespace {

/// Tokens with a blank between positions and a slash between tokens of one position.
std::string shown(std::string_view text, TokenPurpose purpose) {
  std::string result;
  std::size_t position = SIZE_MAX;
  for (const Token& token : tokensOf(text, purpose)) {
    if (!result.empty()) result += token.position == position ? '/' : ' ';
    result += token.text;
    position = token.position;
  }
  return result;
}

std::string indexed(std::string_view text) { return shown(text, TokenPurpose::Index); }
std::string queried(std::string_view text) { return shown(text, TokenPurpose::Query); }

/// Whether the text's index holds the query's tokens one behind the other.
bool finds(std::string_view query, std::string_view text,
           TokenPurpose purpose = TokenPurpose::Query) {
  std::map<std::string, std::vector<bool>> places;
  const auto tokens = tokensOf(text, TokenPurpose::Index);
  for (const Token& token : tokens) {
    auto& at = places[token.text];
    at.resize(tokens.size());
    at[token.position] = true;
  }
  const auto wanted = tokensOf(query, purpose);
  for (std::size_t start = 0; start < tokens.size(); ++start) {
    std::size_t matched = 0;
    for (const Token& token : wanted) {
      const auto found = places.find(token.text);
      if (found == places.end() || start + token.position >= found->second.size() ||
          !found->second[start + token.position])
        break;
      ++matched;
    }
    if (matched == wanted.size()) return matched > 0;
  }
  return false;
}

TEST(Tokenizer, WordsComeInTheirPlainForm) {
  struct Case {
    const char *rule, *text, *tokens;
  };
  for (auto [rule, text, tokens] : {
           Case{"case", "Hello WORLD", "hello world"},
           {"full case folding", "Straße STRASSE", "strasse strasse"},
           {"final sigma", "ΟΔΟΣ οδος οδοσ", "οδοσ οδοσ οδοσ"},
           {"accents", "Café naïve Ångström", "cafe naive angstrom"},
           {"accents apart", "Cafe\u0301 nai\u0308ve", "cafe naive"},
           {"several accents", "Việt Nam", "viet nam"},
           {"strokes", "Łódź Ørsted Đorđe ısı", "lodz orsted dorde isi"},
           {"letters of two", "Æsop œuvre ﬁsh", "aesop oeuvre fish"},
           {"the dotted I", "İstanbul", "istanbul"},
           {"Cyrillic", "Ёлка ЙОД", "елка иод"},
           {"Greek accents and subscripts", "Ἀθῆναι ᾳ", "αθηναι α"},
           {"Hebrew points", "שָׁלוֹם", "שלום"},
           {"Arabic vowels and lengthening", "مُحَمَّد كتـاب", "محمد كتاب"},
           {"Arabic hamza", "أحمد", "احمد"},
           {"widths", "ＡＢＣ １２３", "abc 123"},
           {"compatibility forms", "ℌ ㎏", "h kg"},
           {"a power", "x² H₂O", "x 2/x2 h 2 o/h2o"},
           {"a footnote", "note¹, l'été²", "note 1/note1 l ete 2/lete2"},
           {"a number sign", "№41", "no 41/no41"},
           {"a unit in one square", "5㎏", "5 kg/5kg"},
           {"a fraction", "½cup 2½", "1 2 cup/2cup 2 1/21 2"},
           {"circled numbers", "①② step", "1 2/12 step"},
           {"ordinals are letters", "1º Mª", "1o ma"},
           {"signs for ideographs", "㍻元", "平/平成 成/成元 元"},
           {"digits of all scripts", "٢٠٢٤ २०२४", "2024 2024"},
           {"digits and letters stay together", "mp3 x86", "mp3 x86"},
           {"an apostrophe", "don't", "don t/dont"},
           {"a printed apostrophe", "l’été", "l ete/lete"},
           {"a hyphen", "e-mail", "e mail/email"},
           {"several hyphens", "a-b-c", "a b c/abc"},
           {"a hyphen at the end", "e-mail- x", "e mail/email x"},
           {"hyphens alone", "a -- -b- c-", "a b c"},
           {"a telephone number", "555-1234", "555 1234/5551234"},
           {"an underscore", "snake_case", "snake case"},
           {"numbers", "1,234.56", "1 234 56"},
           {"soft hyphens", "Zeit\u00ADschrift", "zeitschrift"},
           {"zero-width characters", "zero\u200Bwidth\u200D \uFEFFmark", "zerowidth mark"},
           {"an address", "<jane.doe@mail.example.org>", "jane doe mail example org"},
           {"a trademark", "Foo™ bar®", "foo bar"},
           {"Indic vowel signs", "हिन्दी हन्द", "हिन्दी हन्द"},
           {"composed and apart", "क\u093Cलम \u0958लम", "क\u093Cलम क\u093Cलम"},
           {"two-part vowels", "\u0995\u09CB \u0995\u09C7\u09BE", "\u0995\u09CB \u0995\u09CB"},
           {"Han", "東京都", "東/東京 京/京都 都"},
           {"Han and numbers", "2020年度", "2020 年/年度 度"},
           {"kana", "カー", "カ/カー ー"},
           {"kana of half width", "ｶﾞ", "ガ"},
           {"kana apart", "か\u3099", "が"},
           {"kana with other marks are others", "は ば ぱ", "は ば ぱ"},
           {"Hangul", "한국", "한/한국 국"},
           {"Hangul apart", "\u1112\u1161\u11AB", "한"},
           {"Thai syllables", "กิน", "กิ/กิน น"},
           {"Khmer stacks", "ខ្មែរ", "ខ្មែ/ខ្មែរ រ"},
           {"Myanmar", "မြန်မာ", "မြ/မြန် န်/န်မာ မာ"},
           {"pictures", "hi👍🏽!", "hi 👍"},
           {"malformed bytes separate",
            "a\xFF"
            "b\xC3",
            "a b"},
           {"nothing", " .,!\n", ""},
       }) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(indexed(text), tokens);
    EXPECT_TRUE(*tokens == 0 || finds(text, text));
  }
}

TEST(Tokenizer, AQueryHasTheShortestRowOfTokens) {
  EXPECT_EQ(queried("don't e-mail"), "don t e mail");
  EXPECT_EQ(queried("東京都"), "東京 京都 都");
  EXPECT_EQ(queried("東京都 x"), "東京 京都 都 x");
  EXPECT_EQ(queried("都"), "都");
  EXPECT_EQ(shown("東京都", TokenPurpose::PrefixQuery), "東京 京都");
  EXPECT_EQ(shown("東京a", TokenPurpose::PrefixQuery), "東京 京 a");
  EXPECT_EQ(shown("都", TokenPurpose::PrefixQuery), "都");
  EXPECT_EQ(shown("don't 東京都", TokenPurpose::Offsets), "don t 東 京 都");
}

TEST(Tokenizer, AddressesAndHostNamesAreFoundWholeAndByPart) {
  const char* const text =
      "From: \"Jane\" <jane.doe@mail.example.org>, see http://www.example.org/x-y";
  for (const char* query :
       {"jane.doe@mail.example.org", "JANE.DOE", "jane", "doe", "mail.example.org", "example.org",
        "example", "org", "@mail", "www.example.org", "http://www.example.org/x-y", "xy", "x-y"})
    EXPECT_TRUE(finds(query, text)) << query;
  for (const char* query : {"doe.jane", "jane.example", "ample"})
    EXPECT_FALSE(finds(query, text)) << query;
}

TEST(Tokenizer, EveryPartOfATextWithoutBlanksIsFound) {
  for (const std::u32string_view text :
       {U"東京都庁舎の見学", U"ありがとうございました", U"カタカナー語", U"대한민국만세",
        U"ขอบคุณมากครับ", U"ຂອບໃຈຫຼາຍ"}) {
    const auto utf8 = [](std::u32string_view part) {
      std::u16string units(part.begin(), part.end());
      return *utf8FromUTF16(units);
    };
    // Whether a part that begins there would cut a syllable.
    const auto isMark = [&](char32_t letter) {
      return tokensOf("ก" + utf8({&letter, 1}), TokenPurpose::Offsets).size() == 1;
    };
    for (std::size_t start = 0; start < text.size(); ++start) {
      if (isMark(text[start])) continue;  // within a syllable
      for (std::size_t end = start + 1; end <= text.size(); ++end) {
        if (end < text.size() && isMark(text[end])) continue;
        const std::string part = utf8(text.substr(start, end - start));
        EXPECT_TRUE(finds(part, utf8(text))) << part;
        EXPECT_TRUE(finds("x " + part, "x " + part + utf8(text.substr(end)))) << part;
      }
    }
  }
}

TEST(Tokenizer, LongWordsAreCutAlikeEverywhere) {
  const std::string word(5000, 'a'), accented = "é" + word;
  for (const std::string& text : {word, accented, "日" + word}) {
    for (const Token& token : tokensOf(text, TokenPurpose::Index))
      EXPECT_LE(token.text.size(), kLongestToken);
    EXPECT_TRUE(finds(text, text));
  }
  EXPECT_EQ(tokensOf(word, TokenPurpose::Index)[0].end, 5000u);
  EXPECT_EQ(tokensOf(word + "-b", TokenPurpose::Index).size(), 2u);  // no row longer than a token
}

TEST(Tokenizer, AnyMarksOnASyllableAreBounded) {
  std::string text = "ก";
  for (int i = 0; i < 1000; ++i) text += "\u0E49";
  const auto tokens = tokensOf(text + "ข", TokenPurpose::Index);
  ASSERT_EQ(tokens.size(), 3u);
  for (const Token& token : tokens) EXPECT_LE(token.text.size(), kLongestToken);
}

TEST(Tokenizer, ASinkThatStopsIsNotCalledAgain) {
  int calls = 0;
  const auto stop = [](void* context, int, const char*, int, int, int) {
    ++*static_cast<int*>(context);
    return 7;
  };
  EXPECT_EQ(tokenize("one two 東京 three", TokenPurpose::Index, {stop, &calls}), 7);
  EXPECT_EQ(calls, 1);
}

TEST(Tokenizer, PlacesOfHighlightsDoNotOverlap) {
  EXPECT_EQ(tokensOf("½", TokenPurpose::Offsets).size(), 2u);
  std::size_t end = 0;
  for (const Token& token : tokensOf("a ½ 東京 e-mail ㌔㍍ x", TokenPurpose::Offsets)) {
    EXPECT_GE(token.start, end);
    EXPECT_GE(token.end, token.start);
    end = token.end;
  }
}

bool isBorder(std::string_view text, std::size_t at) {
  return at == text.size() || (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
}

TEST(Tokenizer, RandomTextsFindThemselvesAndTheirPieces) {
  const std::u32string letters =
      U"abcXYZ019 "
      U",.-'@_"
      U"éßŁдЙΣ日本語かガｶﾞー한국ัก้ินာမ္မ្ខहिं\u0301\u00AD\u200D½ﬁ👍"
      U"️"
      U"㌔";
  std::mt19937 random(20261122);
  const auto below = [&](std::size_t count) { return random() % count; };
  for (int round = 0; round < 3000; ++round) {
    std::u16string units;
    for (std::size_t length = 1 + below(24); length > 0; --length) {
      const char32_t letter = letters[below(letters.size())];
      if (letter >= 0x10000) {
        units += static_cast<char16_t>(0xD7C0 + (letter >> 10));
        units += static_cast<char16_t>(0xDC00 + (letter & 0x3FF));
      } else {
        units += static_cast<char16_t>(letter);
      }
    }
    const std::string text = *utf8FromUTF16(units);
    SCOPED_TRACE(text);
    const auto tokens = tokensOf(text, TokenPurpose::Offsets);
    for (const Token& token : tokens) {
      ASSERT_TRUE(isBorder(text, token.start) && isBorder(text, token.end));
      ASSERT_TRUE(token.start <= token.end && token.end <= text.size());
    }
    if (tokens.empty()) continue;
    ASSERT_TRUE(finds(text, text));
    ASSERT_TRUE(finds(text, text, TokenPurpose::PrefixQuery));
    ASSERT_TRUE(finds(text, "before " + text + " behind"));
  }
}

}  // namespace
}  // namespace kbx
