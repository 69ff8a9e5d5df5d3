// StoreIndex: the store of messages as the index that a watch keeps up.
#pragma once

#include <string>
#include <vector>

#include "host/index/IndexRun.h"
#include "host/watch/WatchLoop.h"

namespace kbx {

/// Opens the store for each update and lets go of it again, so that others may write in between.
class StoreIndex final : public WatchedIndex {
 public:
  StoreIndex(std::string store, const ImportSettings& imports, IndexListener& listener);

  Answer update(const std::vector<std::string>& paths, Ref<NSError>* error) override;

 private:
  const std::string _path;
  IndexListener& _listener;
  IndexSettings _settings;
};

}  // namespace kbx
