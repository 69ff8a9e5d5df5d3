// FailingReads: a message file that cannot be read to its end.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/support/EMLX.h"
#include "tests/support/FailingFiles.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {

/// Calls `check` with the location of "m.emlx", a message of several pieces: once for each of its
/// reads, which then fails with EIO.
inline void forEachFailingRead(const std::function<void(NSURL*)>& check) {
  constexpr std::size_t kPiece = 1 << 16;
  TemporaryFolder folder;
  auto url = folder.write("m.emlx", emlx(std::string(2 * kPiece, 'x')));
  for (int worked : {0, 1, 2, 3}) {
    SCOPED_TRACE(worked);
    FailingFiles files;
    files.fail(FailingFiles::Call::Read, EIO, worked);
    ScopedService<FileSystem> installed(files);
    check(url);
  }
}

}  // namespace kbx
