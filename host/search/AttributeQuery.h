// AttributeQuery: the language of comparisons between attributes and values.
#pragma once

#include <string_view>

#include "host/search/Query.h"

namespace kbx {

/// The tree of a query such as: kMDItemSubject == "plan*"cd && InRange(kMDItemFSSize, 0, 4096).
///
/// Raises QueryFault.
QueryNode parseAttributeQuery(std::string_view text);

}  // namespace kbx
