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
  /// places  what the store is to remember as indexed, when it is written for the first time
  StoreIndex(std::string store, std::vector<std::string> places, const ImportSettings& imports,
             IndexListener& listener);

  Answer update(const std::vector<std::string>& paths, Ref<NSError>* error) override;

 private:
  const std::string _path;
  std::vector<std::string> _places;  // until they are remembered
  IndexListener& _listener;
  IndexSettings _settings;
};

}  // namespace kbx
