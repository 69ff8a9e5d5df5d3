// AttributeFunctions: what conditions of SQL can ask of attributes that have no column.
#pragma once

#include <cstdint>

#include "host/search/AttributeMatcher.h"
#include "host/store/Store.h"

namespace kbx {

/// The attributes of the row that was asked for last, as several tests ask for the same one.
class AttributeRows {
 public:
  explicit AttributeRows(StoreReader& reader) : _reader(reader) {}

  /// With the file's kMDItemPath, kMDItemFSName and kMDItemFSSize. Absent when there is no such
  /// row, or with an error.
  NSDictionary* attributesOf(std::int64_t id, Ref<NSError>* error);

 private:
  Ref<NSDictionary> read(std::int64_t id, Ref<NSError>* error);

  StoreReader& _reader;
  std::int64_t _id = -1;
  Ref<NSDictionary> _attributes;
};

struct MatcherCall {
  const AttributeMatcher* matcher;
  AttributeRows* rows;
};

/// The type of a matcher call that is bound as the first argument.
inline constexpr char kMatcherType[] = "ferncase.matcher";

/// Gives a connection ferncase_matches(matcher call, id) and ferncase_text(matcher call, text).
/// Harmless when it has them. Arguments of any other type answer NULL.
void registerAttributeFunctions(Database& database);

}  // namespace kbx
