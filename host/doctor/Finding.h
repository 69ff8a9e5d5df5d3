// Finding: what `ferncase doctor` has to say about one thing.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kbx {

/// Texts are UTF-8 but for the bytes of paths.
struct Finding {
  enum class Level : std::uint8_t { Fine, Warning, Problem };

  Level level;
  std::string what;
  std::string advice = {};  // what to do about it; empty where nothing is to be done

  static Finding fine(std::string what) { return {Level::Fine, std::move(what)}; }
};

/// Adds what it finds.
using Examination = void (*)(std::vector<Finding>& findings);

}  // namespace kbx
