#include "platform/preferences/FilePreferences.h"

#include <filesystem>
#include <system_error>

#include "platform/files/FileLock.h"
#include "platform/logging/NSLog.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSNull.h"
#include "platform/preferences/PreferencesFolder.h"
#include "platform/propertylists/NSPropertyListSerialization.h"
#include "platform/system/SystemMessages.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;
using State = PreferencesReading::State;

constexpr std::chrono::seconds kPatience{2};
constexpr char kLockName[] = "/.lock";

void apply(NSMutableDictionary* values, NSDictionary* changes) {
  for (const auto& [key, value] : *changes)
    if (isSame(value, NSNull::null()))
      values->removeObjectForKey(key);
    else
      values->setObjectForKey(value, key);
}

/// Whether both are absent or hold the same values, of the same kinds: as objects 1, 1.0 and true
/// are equal.
bool isSameList(NSDictionary* first, NSDictionary* second) {
  if (!first || !second) return !first && !second;
  if (!isEqual(first, second)) return false;
  const auto bytes = [](NSDictionary* values) {
    return NSPropertyListSerialization::dataWithPropertyList(
        values, NSPropertyListBinaryFormat_v1_0, 0, nullptr);
  };
  return isEqual(bytes(first), bytes(second));
}

}  // namespace

class FilePreferences::Complaints {
 public:
  Complaints() = default;
  ~Complaints() {
    for (const auto& line : _lines) NSLog("%@"_ns, line);
  }
  Complaints(const Complaints&) = delete;
  Complaints& operator=(const Complaints&) = delete;

  /// An absent one is none.
  void add(Ref<NSString> line) {
    if (line) _lines.push_back(std::move(line));
  }

 private:
  std::vector<Ref<NSString>> _lines;
};

/// Puts what is not stored yet on top of what is.
void FilePreferences::Domain::update() {
  values = isReplaced ? nullptr : stored;
  if (!changes) return;
  auto all = values ? values->mutableCopy() : NSMutableDictionary::dictionary();
  apply(all, changes);
  const bool isNothing = all->count() == 0 && !values && (isRemoved || !isReplaced);
  values = isNothing ? nullptr : all->copy();
}

void FilePreferences::Domain::forget() { *this = Domain{}; }

FilePreferences::FilePreferences() : _folder(preferencesFolder()), _patience(kPatience) {}

FilePreferences::FilePreferences(std::string folder, std::chrono::milliseconds patience)
    : _folder(std::move(folder)), _patience(patience) {}

std::optional<std::string> FilePreferences::pathOf(NSString* name) const {
  auto file = preferencesFileName(name);
  if (!file || !_folder) return std::nullopt;
  return *_folder + "/" + *file;
}

/// The domain, read when it was not yet.
FilePreferences::Domain& FilePreferences::found(const std::string& path, Complaints& complaints) {
  Domain& domain = _domains[path];
  if (domain.isRead) return domain;
  auto reading = PreferencesFile(path).read();
  complaints.add(reading.complaint);
  domain.isRead = true;
  domain.stored = reading.values;
  domain.update();
  return domain;
}

bool FilePreferences::makeFolder(Complaints& complaints) const {
  std::error_code fault;
  const fs::path folder(*_folder);
  if (fs::is_directory(folder, fault)) return true;
  fs::create_directories(folder.parent_path(), fault);
  if (fs::create_directory(folder, fault)) {
    std::error_code ignored;
    fs::permissions(folder, fs::perms::owner_all, ignored);  // nobody else's business
  }
  if (!fault) return true;
  complaints.add(stringWithFormat("Preferences: the folder %s cannot be made: %s"_ns, *_folder,
                                  systemMessage(fault.value())));
  return false;
}

bool FilePreferences::storeLocked(const std::string& path, Domain& domain, Complaints& complaints) {
  const PreferencesFile file(path);
  auto reading = file.read();
  if (reading.state == State::Failed) {
    complaints.add(reading.complaint);
    return false;
  }
  domain.stored = reading.values;
  domain.update();
  if (reading.state == State::Damaged) {
    bool isAside = false;
    complaints.add(file.setAside(&isAside));
    if (!isAside) return false;
  } else if (isSameList(domain.values, domain.stored)) {
    return true;
  }
  auto complaint = file.write(domain.values);
  complaints.add(complaint);
  return !complaint;
}

/// Writes what is not stored yet. What cannot be written stays on top.
bool FilePreferences::store(const std::string& path, Domain& domain, Complaints& complaints) {
  if (!makeFolder(complaints)) return false;
  const FileLock lock(*_folder + kLockName, _patience);
  if (!lock.isHeld()) {
    complaints.add(stringWithFormat("Preferences: %s cannot be locked: %s"_ns, *_folder,
                                    systemMessage(-lock.result())));
    return false;
  }
  if (!storeLocked(path, domain, complaints)) return false;
  domain = {.isRead = true, .stored = domain.values, .values = domain.values};
  return true;
}

Ref<NSDictionary> FilePreferences::domain(NSString* name) {
  const auto path = pathOf(name);
  if (!path) return nullptr;
  Complaints complaints;
  std::lock_guard held(_lock);
  return found(*path, complaints).values;
}

bool FilePreferences::change(NSString* name, NSDictionary* changes) {
  const auto path = pathOf(name);
  if (!path || !changes) return false;
  Complaints complaints;
  std::lock_guard held(_lock);
  Domain& domain = found(*path, complaints);
  if (!domain.changes) domain.changes = NSMutableDictionary::dictionary();
  domain.changes->addEntriesFromDictionary(changes);
  domain.update();
  return store(*path, domain, complaints);
}

bool FilePreferences::replace(NSString* name, NSDictionary* values) {
  const auto path = pathOf(name);
  if (!path) return false;
  Complaints complaints;
  std::lock_guard held(_lock);
  Domain& domain = found(*path, complaints);
  domain.isReplaced = true;
  domain.isRemoved = !values;
  domain.changes = values ? values->mutableCopy() : nullptr;
  domain.update();
  return store(*path, domain, complaints);
}

bool FilePreferences::synchronize() {
  Complaints complaints;
  std::lock_guard held(_lock);
  bool isStored = true;
  for (auto& [path, domain] : _domains) {
    if (domain.isPending()) isStored = store(path, domain, complaints) && isStored;
    if (!domain.isPending()) domain.forget();
  }
  return isStored;
}

}  // namespace kbx
