#include "platform/preferences/PreferencesFolder.h"

#include "tests/support/FakeEnvironment.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

std::string folderIn(std::vector<std::string> variables) {
  FakeEnvironment environment(std::move(variables));
  ScopedService<Environment> installed(environment);
  return preferencesFolder().value_or("none");
}

TEST(PreferencesFolder, TheUsersConfigurationFolderCounts) {
  EXPECT_EQ(folderIn({"HOME=/h", "XDG_CONFIG_HOME=/c"}), "/c/ferncase/preferences");
  EXPECT_EQ(folderIn({"HOME=/h"}), "/h/.config/ferncase/preferences");
}

TEST(PreferencesFolder, APathThatIsNotAbsoluteCountsForNothing) {
  EXPECT_EQ(folderIn({"HOME=/h", "XDG_CONFIG_HOME="}), "/h/.config/ferncase/preferences");
  EXPECT_EQ(folderIn({"HOME=/h", "XDG_CONFIG_HOME=c"}), "/h/.config/ferncase/preferences");
  EXPECT_EQ(folderIn({"HOME=h"}), "none");
  EXPECT_EQ(folderIn({}), "none");
}

TEST(PreferencesFolder, TheFirstEntryOfAVariableCounts) {
  EXPECT_EQ(folderIn({"HOME=/h", "HOME=/other"}), "/h/.config/ferncase/preferences");
  EXPECT_EQ(folderIn({"HOME=", "HOME=/other"}), "none");
  EXPECT_EQ(folderIn({"XDG_CONFIG_HOME=", "HOME=/h", "XDG_CONFIG_HOME=/c"}),
            "/h/.config/ferncase/preferences");
}

TEST(PreferencesFolder, NoDomainLeadsOutOfTheFolder) {
  struct Case {
    const char *domain, *file;
  };
  for (auto [domain, file] : {Case{"com.example.app", "com.example.app.plist"},
                              {"../../x", "%2E.%2F..%2Fx.plist"},
                              {"/etc/passwd", "%2Fetc%2Fpasswd.plist"},
                              {"..", "%2E..plist"},
                              {".", "%2E.plist"},
                              {".hidden", "%2Ehidden.plist"},
                              {"a%2Fb", "a%252Fb.plist"},
                              {"a\nb", "a%0Ab.plist"},
                              {"日本", "日本.plist"},
                              {"a b", "a b.plist"}})
    EXPECT_EQ(preferencesFileName(string(domain)), file);
  EXPECT_EQ(preferencesFileName(NSString::stringWithUTF16({u"a\0b", 3})), "a%00b.plist");
}

TEST(PreferencesFolder, ANameWithoutAFormInBytesIsNoDomain) {
  EXPECT_EQ(preferencesFileName(nullptr), std::nullopt);
  EXPECT_EQ(preferencesFileName(""_ns), std::nullopt);
  EXPECT_EQ(preferencesFileName(NSString::stringWithUTF16({u"\xD800", 1})), std::nullopt);
}

}  // namespace
}  // namespace kbx
