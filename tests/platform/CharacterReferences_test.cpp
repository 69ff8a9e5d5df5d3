#include "platform/html/CharacterReferences.h"

#include <gtest/gtest.h>

#include <string>

namespace kbx {
namespace {

/// What a reference stands for and what is behind it, with "|" between; "none" for none.
std::string replaced(std::string_view text, bool isInAttribute = false) {
  const CharacterReference found = characterReference(text, isInAttribute);
  if (found.length == 0) return "none";
  return std::string(found.text()) + "|" + std::string(text.substr(found.length));
}

TEST(CharacterReferences, NamesAndNumbersStandForCharacters) {
  struct Case {
    const char *rule, *input, *output;
  };
  for (auto [rule, input, output] : {
           Case{"a name", "&euro;x", "€|x"},
           Case{"the longest name wins", "&notin;x", "∉|x"},
           Case{"an old name needs no semicolon", "&ampx", "&|x"},
           Case{"an old name inside a longer one that is none", "&notit;", "¬|it;"},
           Case{"a newer name needs one", "&euro x", "none"},
           Case{"two characters", "&nGt;", "≫⃒|"},
           Case{"letters are not the same in both cases", "&Auml;", "Ä|"},
           Case{"no name", "&nonsense;", "none"},
           Case{"nothing behind it", "&", "none"},
           Case{"a blank behind it", "& x;", "none"},
           Case{"the last name of the list", "&zwnj;", "\u200C|"},
           Case{"the longest name", "&CounterClockwiseContourIntegral;", "∳|"},
           Case{"decimal", "&#8364;x", "€|x"},
           Case{"decimal without a semicolon", "&#65x", "A|x"},
           Case{"hexadecimal", "&#x20aC;", "€|"},
           Case{"hexadecimal, capital", "&#X41;", "A|"},
           Case{"no digit", "&#;", "none"},
           Case{"no hexadecimal digit", "&#xg;", "none"},
           Case{"128 to 159 are of windows-1252", "&#128;&", "€|&"},
           Case{"the last of them", "&#159;", "Ÿ|"},
           Case{"one that windows-1252 has not", "&#129;", "|"},
           Case{"zero", "&#0;", "\uFFFD|"},
           Case{"a surrogate", "&#xD800;", "\uFFFD|"},
           Case{"a non-character", "&#xFFFE;", "\uFFFD|"},
           Case{"beyond the last", "&#x110000;", "\uFFFD|"},
           Case{"far beyond the last", "&#99999999999999999999;", "\uFFFD|"},
           Case{"a control character", "&#1;", "|"},
           Case{"a form feed", "&#12;", " |"},
           Case{"a line feed", "&#10;", "\n|"},
       }) {
    SCOPED_TRACE(rule);
    EXPECT_EQ(replaced(input), output);
  }
}

TEST(CharacterReferences, InAnAttributeAnUnterminatedNameBeforeALetterIsText) {
  EXPECT_EQ(replaced("&copy=1", true), "none");
  EXPECT_EQ(replaced("&copyx", true), "none");
  EXPECT_EQ(replaced("&copy;=1", true), "©|=1");
  EXPECT_EQ(replaced("&copy ", true), "©| ");
  EXPECT_EQ(replaced("&copy=1", false), "©|=1");
}

}  // namespace
}  // namespace kbx
