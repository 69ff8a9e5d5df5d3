// IndexCheck: whether the full-text index holds the words of the messages, all and no others.
#pragma once

#include <string>
#include <vector>

#include "host/store/Database.h"

namespace kbx {

/// Adds a sentence for each message whose words in the index are not those of its texts, until
/// there are `most` findings. Reads both whole, in one view of the store, and changes nothing.
void checkIndex(Database& database, std::size_t most, std::vector<std::string>& findings);

}  // namespace kbx
