// KnownAttributes: what the importers that belong to Ferncase can find out about a message.
#pragma once

#include <span>
#include <string_view>

namespace kbx {

struct KnownAttribute {
  std::string_view name;
  std::string_view type;     // "string", "array of strings", "date", "number" or "boolean"
  std::string_view meaning;  // for people, without a full stop
};

/// All of them, sorted by name. A message has those that are known of it.
std::span<const KnownAttribute> knownAttributes();

}  // namespace kbx
