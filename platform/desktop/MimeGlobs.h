// MimeGlobs: MIME types by the names of files, from the database that desktops share.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/Export.h"

namespace kbx {

/// The patterns of "globs2" files. Belongs to one thread while it is filled.
///
/// Of the patterns that fit a name the one of the highest weight counts, then the longest, then one
/// that minds case, then the one that was added first.
class KBX_PLATFORM MimeGlobs {
 public:
  /// Adds the lines of a file, "50:text/html:*.html" or with the flag ":cs" behind. Files that
  /// were added before go before it. Lines of any other form are left out.
  void add(std::string_view text);

  /// "" for a name that no pattern fits. A leading dot begins no extension.
  std::string_view typeOfName(std::string_view name) const;

 private:
  struct Glob {
    int weight;
    bool mindsCase;
    std::string pattern;  // in small letters where case does not count
    std::string type;
  };
  using Index = std::unordered_map<std::string, std::vector<Glob>>;

  void addGlob(Glob glob);
  void addLine(std::string_view line, std::vector<std::string>& closing);

  Index _names;                             // by the whole name
  Index _endings;                           // "*.tar.gz" by ".tar.gz"
  std::vector<Glob> _patterns;              // all others
  std::unordered_set<std::string> _closed;  // types to which later files add nothing
};

/// Whether a name fits a pattern of "*", "?" and sets such as "[0-9a-f]" or "[!x]". Byte by byte,
/// in time bounded by the product of both lengths.
KBX_PLATFORM bool fitsPattern(std::string_view name, std::string_view pattern);

}  // namespace kbx
