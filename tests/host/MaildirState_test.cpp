#include "host/import/MaildirState.h"

#include <gtest/gtest.h>

#include "platform/objects/NSNumber.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

class MaildirStateTest : public testing::Test {
 protected:
  void SetUp() override {
    for (auto name : {"box/cur", "box/new", "box/tmp", "plain/new"})
      std::filesystem::create_directories(_folder / name);
  }
  /// "read flagged replied", those that are; "-" where nothing is said.
  std::string stateOf(const std::string& path) {
    const auto state = maildirState(path);
    if (!state) return "-";
    EXPECT_EQ(state->count(), 3u);
    std::string words;
    for (NSString* name :
         {"com_apple_mail_read"_ns, "com_apple_mail_flagged"_ns, "com_apple_mail_repliedTo"_ns}) {
      auto* number = cast<NSNumber>(state->objectForKey(name));
      if (number && number->boolValue()) words += name->lossyUTF8().substr(15) + " ";
    }
    return words;
  }

  TemporaryFolder _folder;
};

TEST_F(MaildirStateTest, TheLettersBehindTheNameSayWhatWasDone) {
  struct Case {
    const char *name, *state;
  };
  for (auto [name, state] : {Case{"cur/1.M2.host", ""},
                             {"cur/1.M2.host:2,", ""},
                             {"cur/1.M2.host:2,S", "read "},
                             {"cur/1.M2.host:2,FRS", "read flagged repliedTo "},
                             {"cur/1.M2.host:2,SRF", "read flagged repliedTo "},
                             {"cur/1.M2.host:2,DFT", "flagged "},
                             {"cur/1.M2.host:2,P", ""},
                             {"cur/1.M2.host:2,s", ""},
                             {"cur/1.M2.host:2,Sabz", "read "},
                             {"cur/1.M2.host:1,S", ""},
                             {"cur/1.M2,S=5:2,R", "repliedTo "},
                             {"cur/a:2,S:2,F", "flagged "},
                             {"cur/a.eml", ""},
                             {"cur/a.eml:2,S", "read "},
                             {"cur/a.emlx:2,S", "read "},
                             {"new/1.M2.host", ""},
                             {"new/1.M2.host:2,FS", "flagged "}})
    EXPECT_EQ(stateOf((_folder / "box" / name).string()), state) << name;
}

TEST_F(MaildirStateTest, ElsewhereANameSaysNothing) {
  for (auto name : {"plain/new/1:2,S", "plain/1:2,S", "box/tmp/1:2,S", "box/cur/.hidden:2,S",
                    "box/cur/a.emlx", "box/new/a.EMLX", "box/cur/", "none/cur/1:2,S"})
    EXPECT_EQ(stateOf((_folder / name).string()), "-") << name;
  EXPECT_EQ(stateOf(""), "-");
}

TEST_F(MaildirStateTest, APathMayBeginInTheWorkingFolder) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(_folder / "box/new");
  EXPECT_EQ(stateOf("1.host:2,S"), "");
  EXPECT_EQ(stateOf("../cur/1.host:2,S"), "read ");
  std::filesystem::current_path(before);
}

}  // namespace
}  // namespace kbx
