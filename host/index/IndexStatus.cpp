#include "host/index/IndexStatus.h"

#include <functional>
#include <optional>

#include "host/console/Escaping.h"
#include "host/index/IndexedFolders.h"
#include "host/results/DateText.h"
#include "host/results/JSONWriter.h"
#include "host/store/Maintenance.h"
#include "host/store/StoreErrors.h"
#include "platform/files/FileNames.h"

namespace kbx {
namespace {

constexpr double kNanosecondsPerSecond = 1e9;

/// Absent for a folder that was never gone through to its end.
std::optional<std::string> dateOf(const IndexedFolder& folder) {
  if (!folder.indexed) return std::nullopt;
  const auto seconds = static_cast<double>(*folder.indexed) / kNanosecondsPerSecond;
  return internetDate(NSDate::dateWithTimeIntervalSince1970(
      static_cast<double>(static_cast<std::int64_t>(seconds))));
}

/// Calls for each file without a message.
bool eachFailure(Database& store,
                 const std::function<void(std::string_view path, std::string_view reason)>& take,
                 Ref<NSError>* error) {
  Statement rows(store, "SELECT path, failure FROM file WHERE failure IS NOT NULL ORDER BY path");
  Statement::Step step;
  while ((step = rows.step(error)) == Statement::Step::Row) take(rows.bytes(0), rows.text(1));
  return step == Statement::Step::Done;
}

/// What both forms show.
struct Shown {
  std::string path;
  StoreStatus status;
  std::vector<IndexedFolder> folders;
};

class TextForm {
 public:
  explicit TextForm(Output& output) : _output(output) {}

  void begin(const Shown& shown) {
    _output.write("store     ");
    writePath(_output, shown.path);
    _output.write("\nsize      " + std::to_string(shown.status.size) + " bytes");
    _output.write("\nmessages  " + std::to_string(shown.status.messages));
    _output.write("\nfailed    " + std::to_string(shown.status.failures) + "\n");
    for (const IndexedFolder& folder : shown.folders) {
      _output.write("\nfolder    ");
      writePath(_output, folder.path);
      const auto date = dateOf(folder);
      _output.write(date ? "\n          indexed " + *date : "\n          not indexed to its end");
    }
    if (!shown.folders.empty()) _output.write('\n');
  }
  void failure(std::string_view path, std::string_view reason) {
    _output.write("\nfailed    ");
    writePath(_output, path);
    _output.write("\n          ");
    writePath(_output, reason);
  }
  void end(const Shown& shown) {
    if (shown.status.failures > 0) _output.write('\n');
  }

 private:
  Output& _output;
};

class JSONForm {
 public:
  explicit JSONForm(Output& output)
      : _output(output), _json(output, JSONWriter::Layout::Indented) {}

  void begin(const Shown& shown) {
    _json.beginObject();
    path("store", shown.path);
    count("version", shown.status.version);
    count("size", static_cast<std::int64_t>(shown.status.size));
    count("messages", shown.status.messages);
    key("folders");
    _json.beginArray();
    for (const IndexedFolder& folder : shown.folders) add(folder);
    _json.endArray();
    key("failed");
    _json.beginArray();
  }
  void failure(std::string_view file, std::string_view reason) {
    _json.beginObject();
    path("path", file);
    key("reason");
    _json.string(NSString::stringWithLossyUTF8(reason));
    _json.endObject();
  }
  void end(const Shown&) {
    _json.endArray();
    _json.endObject();
    _output.write('\n');
  }

 private:
  void key(std::string_view name) { _json.key(NSString::stringWithLossyUTF8(name)); }
  void path(std::string_view name, std::string_view bytes) {
    key(name);
    _json.string(stringWithFileSystemRepresentation(bytes));
  }
  void count(std::string_view name, std::int64_t number) {
    key(name);
    _json.integer(number);
  }
  void add(const IndexedFolder& folder) {
    _json.beginObject();
    path("path", folder.path);
    key("indexed");
    if (const auto date = dateOf(folder))
      _json.string(NSString::stringWithLossyUTF8(*date));
    else
      _json.null();
    _json.endObject();
  }

  Output& _output;
  JSONWriter _json;
};

template <class Form>
bool write(Form form, const Shown& shown, Database& store, Ref<NSError>* error) {
  form.begin(shown);
  const bool isRead = eachFailure(
      store, [&](std::string_view path, std::string_view reason) { form.failure(path, reason); },
      error);
  form.end(shown);
  return isRead;
}

bool print(const std::string& path, bool isJSON, Output& output, Ref<NSError>* error) {
  auto status = statusOf(path, error);
  auto store = status ? StoreReader::open(path, error) : nullptr;
  if (!store) return false;
  auto folders = indexedFolders(store->database(), error);
  if (!folders) return false;
  const Shown shown{path, *status, std::move(*folders)};
  return isJSON ? write(JSONForm(output), shown, store->database(), error)
                : write(TextForm(output), shown, store->database(), error);
}

}  // namespace

ExitCode printIndexStatus(const std::string& storePath, bool isJSON, Console& console) {
  Ref<NSError> error;
  if (print(storePath, isJSON, console.output, &error)) return kDone;
  console.diagnostics.failure(error);
  return kStoreFailed;
}

}  // namespace kbx
