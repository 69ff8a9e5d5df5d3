// StoreOption: the option that says which store a command works with.
#pragma once

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace kbx {

/// --db. The option writes into this object, so it stays where it is.
class StoreOption {
 public:
  void declareOn(CLI::App& options);
  /// The store that was named, or the user's own. Raises UsageError when neither is known.
  std::string path() const;

 private:
  std::optional<std::string> _path;
};

}  // namespace kbx
