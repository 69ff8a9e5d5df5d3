#include "platform/archives/ArchivedURL.h"

#include "tests/support/Text.h"

namespace kbx {
namespace {

std::string urlOf(const char* relative, NSURL* base = nullptr) {
  return text(fileURLFromText(string(relative), base));
}

TEST(ArchivedURL, AnAbsoluteTextIsALocation) {
  struct Case {
    const char *written, *location;
  };
  for (auto [written, location] : {Case{"file:///tmp/a%20b", "file:///tmp/a%20b"},
                                   {"file:///tmp/folder/", "file:///tmp/folder/"},
                                   {"file:///", "file:///"},
                                   {"file:/tmp", "file:///tmp"},
                                   {"file://localhost/tmp", "file:///tmp"},
                                   {"file:///%ff", "file:///%FF"},
                                   {"file:///a%23b", "file:///a%23b"}})
    EXPECT_EQ(urlOf(written), location) << written;
}

TEST(ArchivedURL, ARelativeTextBeginsInTheFolderOfTheBase) {
  auto folder = NSURL::fileURLWithPath("/tmp/folder"_ns, true);
  auto file = NSURL::fileURLWithPath("/tmp/file"_ns, false);
  EXPECT_EQ(urlOf("a%20b", folder), "file:///tmp/folder/a%20b");
  EXPECT_EQ(urlOf("a/", folder), "file:///tmp/folder/a/");
  EXPECT_EQ(urlOf("a", file), "file:///tmp/a");
  EXPECT_EQ(urlOf("/other", folder), "file:///other");
  EXPECT_EQ(urlOf("file:///other", folder), "file:///other");
  EXPECT_EQ(urlOf("", folder), "file:///tmp/folder/");
  EXPECT_EQ(urlOf("a", NSURL::fileURLWithPath("/"_ns, true)), "file:///a");
}

TEST(ArchivedURL, ATextWithAnotherSchemeHasNoBase) {
  auto folder = NSURL::fileURLWithPath("/tmp/folder"_ns, true);
  for (const char* written : {"http://host/tmp", "mailto:a", "file:tmp"})
    EXPECT_EQ(urlOf(written, folder), "(null)") << written;
  EXPECT_EQ(urlOf("a/b:c", folder), "file:///tmp/folder/a/b:c") << "no scheme";
}

TEST(ArchivedURL, AnythingElseIsAbsent) {
  for (const char* written : {"", "a", "/tmp", "http://host/tmp", "mailto:a", "file://host/tmp",
                              "file:tmp", "file:", "file:///%", "file:///%4", "file:///%4g",
                              "file:///%00", "file:///tmp?query", "file:///tmp#part"})
    EXPECT_EQ(urlOf(written), "(null)") << written;
  EXPECT_EQ(fileURLFromText(NSString::stringWithUTF16(u"file:///\xD800"), nullptr), nullptr);
}

}  // namespace
}  // namespace kbx
