// WordQuery: the language of words, phrases and fields.
#pragma once

#include <string_view>

#include "host/search/Query.h"

namespace kbx {

/// The tree of a query such as: budget from:ada (subject:"two words" OR -has:attachment).
///
/// Raises QueryFault.
QueryNode parseWordQuery(std::string_view text);

}  // namespace kbx
