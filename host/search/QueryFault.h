// QueryFault: why a query means nothing, where, and what may have been meant.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kbx {

/// Raised by the parsers. The text is for people.
struct QueryFault : std::runtime_error {
  QueryFault(const std::string& reason, std::size_t place, std::size_t bytes,
             std::string meant = {})
      : std::runtime_error(reason), begin(place), length(bytes), correction(std::move(meant)) {}

  std::size_t begin, length;  // the place, in bytes of the query
  std::string correction;     // the whole query in its nearest correct form; empty when unknown
};

/// The query on a line, a caret under the place and the correction, in whole lines:
///
///     ferncase: "form:" is no field
///         form:ada budget
///         ^~~~~
///     did you mean  from:ada budget
///
/// Whatever the query holds, it stays on its line and cannot drive a terminal. A long query is
/// shown around the place only.
std::string faultText(std::string_view query, const QueryFault& fault);

/// How many columns of a terminal the text takes: two for wide characters, none for those that
/// join the one before.
std::size_t shownColumns(std::string_view utf8);

}  // namespace kbx
