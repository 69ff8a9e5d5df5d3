// LargePages: memory of this process in pages so large that finding them costs little.
#pragma once

namespace kbx {

/// While it lives, the first 96 MiB that the process takes from its heap lie in large pages, where
/// the system has them. A full-text index gathers words in memory, and each word that it meets is
/// looked for at another place there: with pages of the usual size the processor spends more time
/// on finding the pages than on the words.
///
/// Nothing is taken before it is used, but pages are then taken as a whole. To be made after the
/// processes that shall not have this have been forked. Where it cannot be, nothing happens.
class LargePages {
 public:
  LargePages();
  /// Gives back to the system what is not in use.
  ~LargePages();
  LargePages(const LargePages&) = delete;
  LargePages& operator=(const LargePages&) = delete;
};

}  // namespace kbx
