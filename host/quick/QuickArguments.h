// QuickArguments: the command lines that the quick search answers.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "host/search/Search.h"

namespace kbx {

/// A search that prints paths or a count.
struct QuickArguments {
  std::string query;
  std::string database;  // empty for the user's own
  SearchSettings settings;
  bool isCount = false;
  char end = '\n';  // of each path
};

/// What the words mean to `ferncase search`. Absent where they mean anything but a plain search, or
/// nothing: the host knows.
///
/// words  of the command line, behind "search"
std::optional<QuickArguments> quickArguments(std::span<const char* const> words);

}  // namespace kbx
