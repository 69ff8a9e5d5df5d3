// What a careful programmer writes in an hour, as a floor for `ferncase index`: the texts that the
// MIME library finds in each message, put into a plain full-text table of SQLite with its own
// tokenizer, in one transaction and one process. It remembers nothing else, follows no changes and
// falls with the first message that brings a library down.
//
//     naive_index STORE FOLDER
#include <fcntl.h>
#include <gmime/gmime.h>
#include <sqlite3.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace {

namespace fs = std::filesystem;

struct Unreferencing {
  void operator()(void* object) const { g_object_unref(object); }
};
template <class Object>
using Owned = std::unique_ptr<Object, Unreferencing>;

struct Texts {
  std::string plain, html;
  std::string_view body() const { return plain.empty() ? html : plain; }
};

void addText(GMimeObject*, GMimeObject* part, gpointer gathered) {
  if (!GMIME_IS_TEXT_PART(part)) return;
  char* const text = g_mime_text_part_get_text(GMIME_TEXT_PART(part));
  if (!text) return;
  auto* const texts = static_cast<Texts*>(gathered);
  GMimeContentType* const type = g_mime_object_get_content_type(part);
  const bool isPage = g_mime_content_type_is_type(type, "text", "html");
  (isPage ? texts->html : texts->plain).append(text).append("\n");
  g_free(text);
}

std::string people(GMimeMessage* message, GMimeAddressType type) {
  char* const list =
      internet_address_list_to_string(g_mime_message_get_addresses(message, type), nullptr, FALSE);
  std::string text = list ? list : "";
  g_free(list);
  return text;
}

Owned<GMimeMessage> messageIn(const fs::path& file) {
  const Owned<GMimeStream> stream(g_mime_stream_fs_open(file.c_str(), O_RDONLY, 0, nullptr));
  if (!stream) return nullptr;
  const Owned<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
  return Owned<GMimeMessage>(g_mime_parser_construct_message(parser.get(), nullptr));
}

class Store {
 public:
  explicit Store(const char* path) {
    check(sqlite3_open(path, &_database));
    run("CREATE VIRTUAL TABLE word USING fts5 (path UNINDEXED, subject, sender, recipient, body)");
    run("BEGIN");
    check(sqlite3_prepare_v2(_database, "INSERT INTO word VALUES (?1, ?2, ?3, ?4, ?5)", -1, &_row,
                             nullptr));
  }
  ~Store() {
    sqlite3_finalize(_row);
    run("COMMIT");
    check(sqlite3_close(_database));
  }
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  void add(const std::array<std::string_view, 5>& texts) {
    for (int i = 0; i < 5; ++i)
      check(sqlite3_bind_text(_row, i + 1, texts[i].data(), static_cast<int>(texts[i].size()),
                              SQLITE_STATIC));
    if (sqlite3_step(_row) != SQLITE_DONE) check(SQLITE_ERROR);
    check(sqlite3_reset(_row));
  }

 private:
  void run(const char* sql) { check(sqlite3_exec(_database, sql, nullptr, nullptr, nullptr)); }
  void check(int result) {
    if (result == SQLITE_OK) return;
    std::fprintf(stderr, "%s\n", sqlite3_errmsg(_database));
    std::exit(EXIT_FAILURE);
  }

  sqlite3* _database = nullptr;
  sqlite3_stmt* _row = nullptr;
};

void add(Store& store, const fs::path& file) {
  const auto message = messageIn(file);
  if (!message) return;
  Texts texts;
  g_mime_message_foreach(message.get(), addText, &texts);
  const char* const subject = g_mime_message_get_subject(message.get());
  const std::string from = people(message.get(), GMIME_ADDRESS_TYPE_FROM),
                    to = people(message.get(), GMIME_ADDRESS_TYPE_TO);
  store.add({file.native(), subject ? subject : "", from, to, texts.body()});
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: naive_index STORE FOLDER\n");
    return EXIT_FAILURE;
  }
  g_mime_init();
  Store store(argv[1]);
  for (const auto& entry : fs::recursive_directory_iterator(argv[2]))
    if (entry.is_regular_file()) add(store, entry.path());
}
