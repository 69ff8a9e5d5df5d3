// AttributeFilter: which of the attributes that were found the user wants to see.
#pragma once

#include <string>
#include <vector>

#include "platform/objects/NSDictionary.h"

namespace kbx {

struct AttributeFilter {
  std::vector<std::string> names = {};  // only these; empty for all but what the others hide
  bool showsExtra = false;              // what the mail importer adds under names of its own
  bool showsText = true;                // the body, as text and as HTML

  /// A new dictionary with the attributes that are wanted.
  Ref<NSDictionary> wantedOf(NSDictionary* attributes) const;

 private:
  bool wants(NSObject* key) const;
};

}  // namespace kbx
