#include "host/index/KnownFiles.h"

namespace kbx {
namespace {

constexpr int kPage = 4096;

constexpr char kSelect[] =
    "SELECT id, path, device, inode, size, modified, changed, hash, failure IS NOT NULL FROM file "
    "WHERE path >= ?1 AND path < ?2 AND path <> ?3 ORDER BY path LIMIT ?4";

std::uint64_t word(const Statement& row, int column) {
  return static_cast<std::uint64_t>(row.integer(column));
}

KnownFile fileIn(const Statement& row) {
  KnownFile file;
  file.id = row.integer(0);
  file.path = row.bytes(1);
  file.state = {word(row, 2), word(row, 3), word(row, 4), row.integer(5), row.integer(6)};
  if (!row.isNothing(7)) file.hash = contentHashIn(row.bytes(7));
  file.hasFailed = row.integer(8) != 0;
  return file;
}

}  // namespace

KnownFiles::KnownFiles(Database& database, std::string root)
    : _database(database),
      _below(root.ends_with('/') ? root : root + "/"),
      _last(std::move(root)) {}

std::optional<KnownFile> KnownFiles::next(Ref<NSError>* error) {
  while (_page.empty() && _hasMore)
    if (!readMore(error)) return std::nullopt;
  if (_page.empty()) return std::nullopt;
  KnownFile file = std::move(_page.front());
  _page.pop_front();
  return file;
}

bool KnownFiles::readMore(Ref<NSError>* error) {
  const std::string after = _last;
  // What follows the slash in the order of bytes comes behind everything below the root.
  const std::string_view without = _isAtRoot ? std::string_view() : std::string_view(after);
  const std::string end = _isAtRoot ? after + '\0' : _below.substr(0, _below.size() - 1) + '0';
  Statement rows(_database, kSelect);
  rows.bindBytes(1, after).bindBytes(2, end).bindBytes(3, without).bind(4, kPage);
  Statement::Step step;
  while ((step = rows.step(error)) == Statement::Step::Row) _page.push_back(fileIn(rows));
  if (step == Statement::Step::Failed) return false;
  _hasMore = _isAtRoot || _page.size() == kPage;
  _last = _isAtRoot ? _below : _page.empty() ? _last : _page.back().path;
  _isAtRoot = false;
  return true;
}

}  // namespace kbx
