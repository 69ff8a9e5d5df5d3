#include "platform/files/SymbolicLinks.h"

#include "platform/files/PathWalk.h"

namespace kbx {

std::optional<std::string> pathByResolvingLinks(std::string_view path) {
  PathWalk walk;
  if (!walk.follow(path)) return std::nullopt;
  return walk.path();
}

}  // namespace kbx
