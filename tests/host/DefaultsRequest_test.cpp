#include "host/defaults/DefaultsRequest.h"

#include "host/console/Command.h"
#include "host/console/Output.h"
#include "host/defaults/ValueText.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

using Words = std::vector<std::string>;

std::string shown(NSObject* value) {
  StringOutput output;
  writeValueText(output, value);
  return output.text();
}

/// "action domain key value", with "-" for what is absent; what is wrong with the words otherwise.
std::string request(const Words& words, const std::optional<std::string>& domain = std::nullopt) {
  constexpr const char* kActions[] = {"read ", "write ", "delete "};
  try {
    auto made = defaultsRequest(words, domain);
    return kActions[static_cast<int>(made.action)] + text(made.domain) + " " +
           (made.key ? text(made.key) : "-") + " " + (made.value ? shown(made.value) : "-");
  } catch (const UsageError& error) {
    return error.what();
  }
}

TEST(DefaultsRequest, TheDomainIsToldFromTheKey) {
  struct Case {
    Words words;
    const char* request;
  };
  for (const auto& [words, expected] :
       {Case{{"read"}, "read ferncase - -"},
        {{"read", "Key"}, "read ferncase Key -"},
        {{"read", "org.example"}, "read org.example - -"},
        {{"read", "ferncase"}, "read ferncase - -"},
        {{"read", "NSGlobalDomain"}, "read NSGlobalDomain - -"},
        {{"read", "-g"}, "read NSGlobalDomain - -"},
        {{"read", "-globalDomain", "Key"}, "read NSGlobalDomain Key -"},
        {{"read", "plain", "Key"}, "read plain Key -"},
        {{"read", "org.example", "a.b"}, "read org.example a.b -"},
        {{"delete", "Key"}, "delete ferncase Key -"},
        {{"delete", "org.example"}, "delete org.example - -"},
        {{"delete", "plain", "Key"}, "delete plain Key -"},
        {{"write", "Key", "x"}, "write ferncase Key x"},
        {{"write", "a.b", "x"}, "write ferncase a.b x"},
        {{"write", "org.example", "Key", "x"}, "write org.example Key x"},
        {{"write", "-g", "Key", "x"}, "write NSGlobalDomain Key x"}}) {
    SCOPED_TRACE(expected);
    EXPECT_EQ(request(words), expected);
  }
}

TEST(DefaultsRequest, WithTheOptionNoWordNamesTheDomain) {
  struct Case {
    Words words;
    const char* request;
  };
  for (const auto& [words, expected] : {Case{{"read"}, "read plain - -"},
                                        {{"read", "a.b"}, "read plain a.b -"},
                                        {{"read", "ferncase"}, "read plain ferncase -"},
                                        {{"read", "a", "b"}, "a word too many: b"},
                                        {{"delete"}, "delete plain - -"},
                                        {{"delete", "a.b"}, "delete plain a.b -"},
                                        {{"write", "a.b", "x"}, "write plain a.b x"},
                                        {{"write", "a.b", "-int", "5"}, "write plain a.b 5"},
                                        {{"write", "a", "b", "c"}, "a word too many: c"}}) {
    SCOPED_TRACE(expected);
    EXPECT_EQ(request(words, "plain"), expected);
  }
  EXPECT_EQ(request({"read"}, "-g"), "read NSGlobalDomain - -");
}

TEST(DefaultsRequest, ATypeEndsTheNames) {
  struct Case {
    Words words;
    const char* request;
  };
  for (const auto& [words, expected] :
       {Case{{"write", "Key", "-int", "5"}, "write ferncase Key 5"},
        {{"write", "d", "Key", "-int", "5"}, "write d Key 5"},
        {{"write", "Key", "-string", "-int"}, "write ferncase Key \"-int\""},
        {{"write", "Key", "-array"}, "write ferncase Key ()"},
        {{"write", "Key", "-array", "1"}, "write ferncase Key (\n    1\n)"},
        {{"write", "d", "Key", "-array", "1"}, "write d Key (\n    1\n)"},
        {{"write", "Key", "-5"}, "write ferncase Key -5"},
        {{"write", "d", "Key", "-5"}, "write d Key -5"}}) {
    SCOPED_TRACE(expected);
    EXPECT_EQ(request(words), expected);
  }
}

TEST(DefaultsRequest, WrongUsageIsTold) {
  struct Case {
    Words words;
    const char* complaint;
  };
  for (const auto& [words, complaint] :
       {Case{{}, "defaults needs one of read, write and delete"},
        {{"frob"}, "defaults cannot frob: it can read, write and delete"},
        {{"delete"}, "defaults delete needs a KEY or a DOMAIN"},
        {{"write"}, "defaults write needs a KEY and a VALUE"},
        {{"write", "Key"}, "a VALUE is missing"},
        {{"write", "-int", "5"}, "defaults write needs a KEY and a VALUE"},
        {{"write", "a", "b", "c", "d"}, "a word too many: d"},
        {{"write", "a", "b", "c", "-int", "5"}, "a word too many: -int"},
        {{"read", "a", "b", "c"}, "a word too many: c"},
        {{"read", "-x"}, "unknown option -x"},
        {{"read", "--frob"}, "unknown option --frob"},
        {{"delete", "-x"}, "unknown option -x"},
        {{"write", "-x", "Key", "v"}, "unknown option -x"},
        {{"read", ""}, "the KEY is empty"},
        {{"read", "", "Key"}, "the DOMAIN is empty"},
        {{"read", "\xFF", "Key"}, "the DOMAIN is not UTF-8: \xFF"},
        {{"read", "\xFF"}, "the KEY is not UTF-8: \xFF"},
        {{"write", "NSArgumentDomain", "Key", "v"}, "the domain NSArgumentDomain is in no file"},
        {{"read", "NSRegistrationDomain", "Key"},
         "the domain NSRegistrationDomain is in no file"}}) {
    EXPECT_EQ(request(words), complaint);
  }
  EXPECT_EQ(request({"read"}, ""), "the DOMAIN is empty");
}

TEST(DefaultsRequest, AWordAloneIsADomainByItsForm) {
  for (const char* word : {"org.example", ".", "ferncase", "NSGlobalDomain", "-g", "-globaldomain"})
    EXPECT_TRUE(isDomainName(word)) << word;
  for (const char* word : {"", "Key", "Ferncase", "KBXLoggerAllAreas", "org"})
    EXPECT_FALSE(isDomainName(word)) << word;
}

}  // namespace
}  // namespace kbx
