#include "host/results/ResultOptions.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "host/console/Command.h"
#include "host/results/RawValues.h"

namespace kbx {

void ResultOptions::declareOn(CLI::App& options) {
  options.add_flag("--json", _isJSON, "Print one JSON array");
  options.add_flag("--ndjson", _isLines, "Print one JSON object a line, at once");
  options.add_flag("--plist", _isPropertyList, "Print one XML property list");
  options.add_option("--name", _filter.names, "Print only this attribute; may be repeated")
      ->type_name("ATTRIBUTE")
      ->allow_extra_args(false);
  options.add_flag("--raw", _isRaw, "Print the bare values of --name, a NUL behind each");
  options
      .add_option("--null-marker", _nullMarker,
                  "What --raw prints for an attribute that a file has not")
      ->type_name("TEXT");
  options.add_flag("--no-text", _hidesText, "Leave the body out, as text and as HTML");
  options.add_flag("--extra", _filter.showsExtra,
                   "Print what is known about a message beyond the common attributes");
}

void ResultOptions::check() const {
  if (_isJSON + _isLines + _isPropertyList + _isRaw > 1)
    throw UsageError("--json, --ndjson, --plist and --raw exclude each other");
  if (_isRaw && _filter.names.empty()) throw UsageError("--raw needs --name");
  if (std::ranges::find(_filter.names, "") != _filter.names.end())
    throw UsageError("--name needs an ATTRIBUTE");
  if (_nullMarker && !_isRaw) throw UsageError("--null-marker needs --raw");
}

AttributeFilter ResultOptions::filter() const {
  AttributeFilter filter = _filter;
  filter.showsText = !_hidesText;
  return filter;
}

std::unique_ptr<Results> ResultOptions::makeResults(Output& output, bool hasSeveral) const {
  if (_isJSON) return makeJSONResults(output);
  if (_isLines) return makeLineResults(output);
  if (_isPropertyList) return makePropertyListResults(output);
  if (_isRaw) return makeRawValues(output, _filter.names, _nullMarker.value_or("(null)"));
  return makeTextResults(output, hasSeveral);
}

}  // namespace kbx
