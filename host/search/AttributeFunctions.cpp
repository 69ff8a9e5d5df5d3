#include "host/search/AttributeFunctions.h"

#include <sqlite3.h>

#include <string>

#include "platform/files/FileNames.h"
#include "platform/objects/NSNumber.h"

namespace kbx {
namespace {

const MatcherCall* callIn(sqlite3_value* value) {
  return static_cast<const MatcherCall*>(sqlite3_value_pointer(value, kMatcherType));
}

void matchesText(sqlite3_context* context, int, sqlite3_value** arguments) {
  const auto* call = callIn(arguments[0]);
  const unsigned char* text = sqlite3_value_text(arguments[1]);
  if (!call || !text) return;
  const auto length = static_cast<std::size_t>(sqlite3_value_bytes(arguments[1]));
  const std::string_view utf8(reinterpret_cast<const char*>(text), length);
  sqlite3_result_int(context, call->matcher->matchesText(utf8) ? 1 : 0);
}

void matches(sqlite3_context* context, int, sqlite3_value** arguments) {
  const auto* call = callIn(arguments[0]);
  if (!call) return;
  Ref<NSError> error;
  NSDictionary* attributes = call->rows->attributesOf(sqlite3_value_int64(arguments[1]), &error);
  if (!attributes && error) {
    const std::string reason = error->localizedDescription()->lossyUTF8();
    sqlite3_result_error(context, reason.c_str(), static_cast<int>(reason.size()));
    return;
  }
  sqlite3_result_int(context, attributes && call->matcher->matches(attributes) ? 1 : 0);
}

}  // namespace

NSDictionary* AttributeRows::attributesOf(std::int64_t id, Ref<NSError>* error) {
  if (_id != id || !_attributes) {
    _attributes = read(id, error);
    _id = id;
  }
  return _attributes;
}

Ref<NSDictionary> AttributeRows::read(std::int64_t id, Ref<NSError>* error) {
  const Ref<NSDictionary> imported = _reader.attributesOf(id, error);
  if (!imported) return nullptr;
  Statement file(_reader.database(), "SELECT path, size FROM file WHERE id = ?1");
  if (file.bind(1, id).step(error) != Statement::Step::Row) return nullptr;
  const std::string_view path = file.bytes(0);
  Ref<NSMutableDictionary> all = imported->mutableCopy();
  all->setObjectForKey(stringWithFileSystemRepresentation(path), "kMDItemPath"_ns);
  all->setObjectForKey(stringWithFileSystemRepresentation(path.substr(path.rfind('/') + 1)),
                       "kMDItemFSName"_ns);
  all->setObjectForKey(NSNumber::numberWithInteger(file.integer(1)), "kMDItemFSSize"_ns);
  return all;
}

void registerAttributeFunctions(Database& database) {
  // A connection that has them and uses them right now refuses, which is as good.
  const auto add = [&](const char* name, auto function) {
    sqlite3_create_function_v2(database.handle(), name, 2, SQLITE_UTF8 | SQLITE_DIRECTONLY, nullptr,
                               function, nullptr, nullptr, nullptr);
  };
  add("ferncase_matches", matches);
  add("ferncase_text", matchesText);
}

}  // namespace kbx
