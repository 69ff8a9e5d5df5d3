// LiveSearch: what a query finds now, and what it finds from now on.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_set>

#include "host/search/Search.h"

namespace kbx {

/// Runs a query again whenever the store has changed, and gives out each message once.
class LiveSearch {
 public:
  using Take = std::function<bool(Search& search, std::int64_t id)>;

  /// query  its dates are taken anew each time; raises QueryFault when it means nothing
  LiveSearch(StoreReader& reader, std::string query, SearchSettings settings);

  /// Gives `take` the messages that it has not had yet, if the store changed since the last call.
  /// The first call gives them within the settings' limit; all later ones are beyond it.
  ///
  /// False when `take` says so, or with an error when the store cannot be read.
  bool update(const Take& take, Ref<NSError>* error);

 private:
  StoreReader& _reader;
  const std::string _query;
  SearchSettings _settings;
  std::int64_t _version = -1;  // of the store's data; differs after each change by others
  std::unordered_set<std::int64_t> _known;
};

/// Waits for some time, or until a signal comes. False when nobody reads standard output any more.
bool waitForReader(int milliseconds);

}  // namespace kbx
