#include "mail/ImportMessage.h"

#include <gtest/gtest.h>

#include "tests/mail/Messages.h"
#include "tests/support/FailingFiles.h"

namespace kbx {
namespace {

TEST(ImportMessage, WhatCannotBeReadToItsEndIsAnErrorAndGivesNoAttributes) {
  constexpr std::size_t kPiece = 1 << 16;
  TemporaryFolder folder;
  auto url = folder.write("m.emlx", emlx(std::string(2 * kPiece, 'x')));
  for (int worked : {0, 1, 2, 3}) {
    SCOPED_TRACE(worked);
    FailingFiles files;
    files.fail(FailingFiles::Call::Read, EIO, worked);
    ScopedService<FileSystem> installed(files);
    auto attributes = NSMutableDictionary::dictionary();
    Ref<NSError> error;
    EXPECT_FALSE(importMessage(url, nullptr, attributes, &error));
    EXPECT_EQ(error->code(), 256);
    EXPECT_EQ(attributes->count(), 0u);
  }
}

}  // namespace
}  // namespace kbx
