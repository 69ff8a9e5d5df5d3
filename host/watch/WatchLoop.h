// WatchLoop: keeps an index up with folders while they change.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/watch/WatchedFolders.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// The index that is kept up.
class WatchedIndex {
 public:
  enum class Answer : std::uint8_t { Done, Interrupted, Busy, Failed };
  virtual ~WatchedIndex() = default;
  /// Looks at folders, with all that is and was in them, and at files, whether they are there or
  /// not, and changes the index to fit. What a path that is not there held is removed.
  ///
  /// Interrupted: the process is wished to end, and not everything was looked at.
  ///
  /// error  set when the answer is Busy (another process writes, and nothing was changed) or Failed
  virtual Answer update(const std::vector<std::string>& paths, Ref<NSError>* error) = 0;
};

/// Hears what a watch has to say beside the changes of the index. All on one thread.
class WatchListener {
 public:
  virtual ~WatchListener() = default;
  /// The index is up to date for the first time, and changes are followed.
  virtual void ready(std::size_t folders) = 0;
  /// Notices were lost; all folders are gone through.
  virtual void rescanning() = 0;
  virtual void folderEvent(const WatchedFolders::Event& event) = 0;
  /// Somebody else writes the index; told once, until an update is done again.
  virtual void waiting(NSError* error) = 0;
  virtual void failed(NSError* error) = 0;
  /// An update is done.
  virtual void updated(std::size_t folders) = 0;
};

/// Belongs to one thread.
class WatchLoop {
 public:
  /// roots  absolute paths of folders, none inside another
  WatchLoop(FolderWatcher& watcher, WatchedIndex& index, WatchListener& listener,
            std::vector<std::string> roots)
      : _watcher(watcher),
        _index(index),
        _listener(listener),
        _folders(watcher, _changes, std::move(roots)) {}

  /// Watches the folders and then brings the index up to date, so that no change falls between.
  void begin();
  /// Waits for something to happen and does what is due then. False when the index failed, which
  /// was told: then it is over.
  bool step();

  /// How often folders without a watch are gone through, and roots that are gone long since looked
  /// for.
  static constexpr std::chrono::minutes kRetry{5};
  /// When a root that is gone is looked for first: programs that put another folder in its place
  /// do so at once. Each further pause is twice the one before.
  static constexpr std::chrono::seconds kFirstLook{1};
  static constexpr std::chrono::seconds kBusyRetry{1};

 private:
  std::optional<Moment> deadline() const;
  void update(Moment now);
  void rescan();
  void retryUnwatched(Moment now);
  void lookForLost(Moment now);
  void tellEvents();

  FolderWatcher& _watcher;
  WatchedIndex& _index;
  WatchListener& _listener;
  PendingChanges _changes;
  WatchedFolders _folders;
  std::optional<Moment> _retry;  // while there are folders without a watch
  std::optional<Moment> _look;   // while there are roots that are gone
  std::chrono::seconds _pause = kFirstLook;
  std::optional<Moment> _busyUntil;  // while somebody else writes
  bool _isReady = false;
  bool _hasFailed = false;
};

}  // namespace kbx
