// AttributeNames: the attributes that messages are known to have.
#pragma once

#include <string_view>

namespace kbx {

/// The name that was meant by one that no message has but that begins like the system's own; empty
/// when the name is a known one, or unlike all of them. Bundles may set attributes of any name.
std::string_view nearestAttribute(std::string_view name);

}  // namespace kbx
