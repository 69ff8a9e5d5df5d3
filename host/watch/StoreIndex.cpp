#include "host/watch/StoreIndex.h"

#include <utility>

#include "host/index/IndexedFolders.h"
#include "host/store/StoreErrors.h"

namespace kbx {

StoreIndex::StoreIndex(std::string store, std::vector<std::string> places,
                       const ImportSettings& imports, IndexListener& listener)
    : _path(std::move(store)), _places(std::move(places)), _listener(listener) {
  _settings.imports = imports;
  _settings.roots = FolderWalk::Root::Seen;
}

WatchedIndex::Answer StoreIndex::update(const std::vector<std::string>& paths,
                                        Ref<NSError>* error) {
  const auto store = StoreWriter::open(_path, error);
  if (!store) return (*error)->code() == StoreBusyError ? Answer::Busy : Answer::Failed;
  if (!_places.empty() && !rememberFolders(*store, _places, error)) return Answer::Failed;
  _places.clear();
  IndexRun run(*store, _settings, _listener);
  switch (run.run(outermost(paths), error)) {
    case IndexRun::End::NoImporter:
    case IndexRun::End::StoreFailed:
      return Answer::Failed;
    case IndexRun::End::Interrupted:
      return Answer::Interrupted;
    default:  // what cannot be read was told, and stays as it is
      return Answer::Done;
  }
}

}  // namespace kbx
