// JSONLines: what the commands print with `--ndjson`.
#pragma once

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace kbx {

/// The value of each line. A line that is no JSON raises.
inline std::vector<nlohmann::json> jsonLines(const std::string& output) {
  std::vector<nlohmann::json> found;
  std::istringstream stream(output);
  for (std::string line; std::getline(stream, line);) found.push_back(nlohmann::json::parse(line));
  return found;
}

}  // namespace kbx
