// IndexCheck: whether the full-text index holds the words of the messages, all and no others.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/store/Database.h"

namespace kbx {

/// Hears how far a check is, which comes in several stretches.
struct CheckProgress {
  /// A stretch of so many steps, at least about; what the one before had left is done.
  std::function<void(std::uint64_t steps)> begins = [](std::uint64_t) {};
  std::function<void(std::uint64_t steps)> advances = [](std::uint64_t) {};
};

/// Adds a sentence for each message whose words in the index are not those of its texts, until
/// there are `most` findings. Reads both whole, in one view of the store, and changes nothing.
void checkIndex(Database& database, std::size_t most, std::vector<std::string>& findings,
                const CheckProgress& progress);

}  // namespace kbx
