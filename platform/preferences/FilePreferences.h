// FilePreferences: preference domains in property-list files of one folder.
#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/preferences/Preferences.h"
#include "platform/preferences/PreferencesFile.h"

namespace kbx {

/// The system's preferences. A file is read at the first question about its domain, and again when
/// it is about to be changed: under a lock that all processes share, so no change of another one is
/// lost. What is written goes beside, is flushed and renamed. A file that holds no dictionary
/// counts as empty; before it is written over it is kept aside. Troubles go to the classic log.
class KBX_PLATFORM FilePreferences final : public Preferences {
 public:
  /// In preferencesFolder(). Where there is none, nothing is stored.
  FilePreferences();
  /// folder    in the file system's form, absolute; made when the first domain is stored
  /// patience  how long to wait while another process changes something
  FilePreferences(std::string folder, std::chrono::milliseconds patience);

  Ref<NSDictionary> domain(NSString* name) override;
  bool change(NSString* name, NSDictionary* changes) override;
  bool replace(NSString* name, NSDictionary* values) override;
  bool synchronize() override;

 private:
  /// A domain as this process sees it: what the file held, with what is not stored yet on top.
  struct Domain {
    bool isRead = false;
    Ref<NSDictionary> stored;
    bool isReplaced = false;             // what the file holds no longer counts
    bool isRemoved = false;              // and nothing was put in its place
    Ref<NSMutableDictionary> changes{};  // the null marker removes; absent: none
    Ref<NSDictionary> values;

    bool isPending() const { return isReplaced || changes; }
    void update();
    void forget();
  };
  /// Collects sentences and logs them when everything is unlocked again: a log may ask for
  /// preferences itself.
  class Complaints;

  std::optional<std::string> pathOf(NSString* name) const;
  Domain& found(const std::string& path, Complaints& complaints);
  bool store(const std::string& path, Domain& domain, Complaints& complaints);
  bool storeLocked(const std::string& path, Domain& domain, Complaints& complaints);
  bool makeFolder(Complaints& complaints) const;

  const std::optional<std::string> _folder;
  const std::chrono::milliseconds _patience;
  std::mutex _lock;                        // of what follows
  std::map<std::string, Domain> _domains;  // by the path of the file
};

}  // namespace kbx
