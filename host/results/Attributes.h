// Attributes: what an importer found out about a file, by name.
#pragma once

#include <vector>

#include "platform/objects/NSDictionary.h"

namespace kbx {

struct Attribute {
  Ref<NSString> name;
  Ref<NSObject> value;
};

/// The entries in the order of their names' units. A key that is no string is named by its
/// description.
std::vector<Attribute> sortedAttributes(NSDictionary* attributes);

}  // namespace kbx
