// Kills: how often a test ends a program at a random moment.
#pragma once

#include <cstdlib>

namespace kbx {

/// FERNCASE_KILLS of the environment; without it what is usual, which takes little time.
inline int killsOr(int usual) {
  const char* wish = std::getenv("FERNCASE_KILLS");
  return wish ? std::atoi(wish) : usual;
}

}  // namespace kbx
