#include "host/store/StoreOption.h"

#include <CLI/CLI.hpp>

#include "host/console/Command.h"
#include "host/store/Store.h"

namespace kbx {

void StoreOption::declareOn(CLI::App& options) {
  options.add_option("--db", _path, "The store, instead of the user's own")->type_name("FILE");
}

std::string StoreOption::path() const {
  // An empty name comes from a variable that is not set; the user's own store is not meant.
  if (_path && _path->empty()) throw UsageError("--db needs a FILE");
  if (const auto path = _path ? _path : defaultStorePath()) return *path;
  throw UsageError("neither XDG_DATA_HOME nor HOME says where the store is; --db FILE does");
}

}  // namespace kbx
