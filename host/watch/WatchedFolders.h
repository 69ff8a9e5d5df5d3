// WatchedFolders: all folders below some roots, each with its watch, whatever happens to them.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/watch/Departures.h"
#include "host/watch/FolderWatcher.h"
#include "host/watch/PendingChanges.h"
#include "host/watch/WatchTree.h"

namespace kbx {

/// Turns notices, which name entries of folders, into paths of messages that are to be looked at;
/// watches folders that appear, follows those that move, and lets go of those that leave. Belongs
/// to one thread.
class WatchedFolders {
 public:
  /// Why a folder is not watched, or is again.
  struct Event {
    enum class Kind : std::uint8_t {
      Refused,  // with the error number
      Limited,  // the first folder for which the system gave no watch
      Lost,     // a root is gone, or what was mounted on it
      Found     // it is back
    };
    Kind kind;
    std::string path;
    int failure = 0;
  };

  /// roots  absolute paths of folders, none inside another; that of a link is followed
  WatchedFolders(FolderWatcher& watcher, PendingChanges& changes, std::vector<std::string> roots)
      : _watcher(watcher), _changes(changes), _roots(std::move(roots)) {}

  /// Watches everything anew and forgets what was known. Until it returns, changes may go unseen;
  /// whoever goes through all folders afterwards misses none.
  void begin();
  /// What the system told.
  void take(const FolderNotice& notice, Moment now);
  /// Lets go of what has moved away when so long nothing told where to.
  void expire(Moment now);
  /// When expire() will have something to do.
  std::optional<Moment> deadline() const { return _departures.deadline(); }

  /// Whether notices were lost, so that everything must begin() again.
  bool hasLostNotices() const { return _hasLostNotices; }
  /// Lets go of roots that are no longer what they were. Everything in one that was unmounted or
  /// moved away seems to be gone; it must not be asked for before this.
  void checkRoots();
  /// Whether a path is that of a root that is there, or inside one.
  bool isInRoot(const std::string& path) const;
  /// Whether any folder is waited for that cannot be watched now.
  bool hasUnwatched() const { return !_limited.empty() || !_lost.empty(); }
  /// Tries those again. Each that is watched now, and each that has to do without, is settled as a
  /// folder.
  void retry();
  /// Whether any root is gone.
  bool hasLost() const { return !_lost.empty(); }
  /// Tries these alone, which costs a look at each.
  void retryLost();
  /// The roots that are there, or were when they were last looked at.
  std::vector<std::string> presentRoots() const;
  /// How many folders are watched.
  std::size_t count() const { return _tree.size(); }
  /// What happened since the last call.
  std::vector<Event> takeEvents();

  /// How long what moved away waits for the notice of its new path. The two come one behind the
  /// other, so any time is long.
  static constexpr std::chrono::milliseconds kPairing{100};

 private:
  static constexpr int kNone = WatchTree::kNone;
  /// Which folder shows at a path; zeros where there is none.
  struct Identity {
    std::uint64_t device = 0, number = 0;
    bool operator==(const Identity&) const = default;
  };
  struct Root {
    int watch;
    Identity identity;
  };
  /// A folder that is not there now, and what shows in its place.
  struct Lost {
    std::string path;
    Identity cover;
  };
  /// A folder to be watched inside another one.
  struct Ahead {
    int parent;
    std::string name;
  };

  // What happened to the entries of a folder.
  void takeFile(const std::string& path, const FolderNotice& notice, Moment now);
  void takeFolder(const std::string& path, const FolderNotice& notice, Moment now);
  void appear(const std::string& path, const FolderNotice& notice);
  void arrive(const std::string& path, const FolderNotice& notice);
  void vanish(const std::string& path, int watch);
  void depart(const std::string& path, const FolderNotice& notice, int watch, Moment now);
  void leave(const Departure& departure);

  // What happened to a folder itself.
  void end(int watch);
  bool beginRoot(const std::string& root);
  void lose(const std::string& root);
  void retryLimited();

  // The watches.
  void enter(int parent, const std::string& name);
  void enterFoldersIn(int folder);
  void addFoldersIn(int folder, std::vector<Ahead>& ahead);
  int watch(const std::string& path);
  static Identity identityOf(const std::string& path);
  bool isOtherNameOf(int watch, const std::string& path) const;
  void forget(int watch);
  void refuse(const std::string& path, int failure);

  int watchOf(const std::string& path) const;
  bool isWalked(const std::string& folder) const;

  FolderWatcher& _watcher;
  PendingChanges& _changes;
  const std::vector<std::string> _roots;
  WatchTree _tree;
  Departures _departures;
  std::map<std::string, Root> _present;  // roots that are watched
  std::vector<Lost> _lost;               // other roots, and mounted folders
  std::vector<std::string> _limited;     // the outermost ones without a watch
  std::vector<Event> _events;
  bool _hasLostNotices = false;
  bool _hasToldLimit = false;
};

}  // namespace kbx
