// Spelling: which of the known words may have been meant.
#pragma once

#include <span>
#include <string_view>

namespace kbx {

/// The word nearest to `word`, ASCII letters of either case being the same; empty when none is
/// near. A letter left out, put in or put in the place of another counts one, as do two that
/// changed places. One such slip is near for up to four letters, two for more.
std::string_view nearestWord(std::string_view word, std::span<const std::string_view> known);

}  // namespace kbx
