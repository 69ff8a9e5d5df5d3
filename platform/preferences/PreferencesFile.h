// PreferencesFile: the property-list file of one preference domain.
#pragma once

#include <cstdint>
#include <string>

#include "platform/files/NSURL.h"
#include "platform/objects/NSDictionary.h"

namespace kbx {

/// What is in a file, or why there is nothing.
struct PreferencesReading {
  enum class State : std::uint8_t {
    Absent,   // there is no file
    Good,     // and the values are there
    Damaged,  // there is a file, but no dictionary to be had from it
    Failed,   // nothing is known of the file: the system failed
  };
  State state = State::Absent;
  Ref<NSDictionary> values;  // absent unless Good
  Ref<NSString> complaint;   // a sentence for the log, when Damaged or Failed
};

/// Reads and writes one file; knows nothing of locks and other processes.
class PreferencesFile {
 public:
  /// path  in the file system's form, absolute
  explicit PreferencesFile(const std::string& path);

  PreferencesReading read() const;
  /// Puts the values into the file in one step; absent removes it. Absent when that worked, else a
  /// sentence for the log.
  Ref<NSString> write(NSDictionary* values) const;
  /// Renames a damaged file to "….corrupt", or "….corrupt-2" and so on where that is taken. A
  /// sentence for the log either way.
  Ref<NSString> setAside(bool* isAside) const;

 private:
  const std::string _path;
  const Ref<NSURL> _url;
};

}  // namespace kbx
