#include "platform/desktop/MimeTypes.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kbx {
namespace {

TEST(MimeTypes, TheSharedDatabaseAnswersWhereItIsInstalled) {
  if (!std::filesystem::exists("/usr/share/mime/globs2"))
    GTEST_SKIP() << "no shared database of MIME types here";
  EXPECT_EQ(MimeTypes::current().typeOfName("picture.png"), "image/png");
  EXPECT_EQ(MimeTypes::current().typeOfName("message.eml"), "message/rfc822");
  EXPECT_EQ(MimeTypes::current().typeOfName("file.nobody-has-this-ending"), "");
}

}  // namespace
}  // namespace kbx
