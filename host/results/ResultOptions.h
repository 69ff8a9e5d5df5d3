// ResultOptions: the options with which a command says what it prints of messages, and how.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/results/AttributeFilter.h"
#include "host/results/Results.h"

namespace CLI {
class App;
}

namespace kbx {

/// --json, --ndjson, --plist, --name, --raw, --null-marker, --no-text and --extra. The options
/// write into this object, so it stays where it is.
class ResultOptions {
 public:
  void declareOn(CLI::App& options);
  /// Raises UsageError when they contradict each other, or one lacks another or its value.
  void check() const;
  AttributeFilter filter() const;
  /// hasSeveral  the text form has a heading for each of several files
  std::unique_ptr<Results> makeResults(Output& output, bool hasSeveral) const;

 private:
  AttributeFilter _filter;
  std::optional<std::string> _nullMarker;
  bool _isJSON = false;
  bool _isLines = false;
  bool _isPropertyList = false;
  bool _isRaw = false;
  bool _hidesText = false;
};

}  // namespace kbx
