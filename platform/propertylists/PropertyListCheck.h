// PropertyListCheck: whether a tree of objects is a property list that a format can hold.
#pragma once

#include <optional>
#include <string>

#include "platform/propertylists/NSPropertyListSerialization.h"

namespace kbx {

/// What keeps the list from being written, and at which key path, as the end of a sentence; absent
/// when nothing does.
std::optional<std::string> faultInPropertyList(NSObject* list, NSPropertyListFormat format);

}  // namespace kbx
