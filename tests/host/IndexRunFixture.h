// IndexRunTest: a folder of messages, a store beside it, and runs that bring the store up to date.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "host/index/IndexRun.h"
#include "platform/objects/NSNumber.h"
#include "platform/plugins/MDImporter.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakeImporter.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {

/// Writes down what happened, with paths below the mail folder.
class IndexRecorder final : public IndexListener {
 public:
  explicit IndexRecorder(std::string folder) : _folder(std::move(folder)) {}

  void compared() override {}
  void begins(std::uint64_t files) override { announced = files; }
  void isDone(bool) override { ++done; }
  void added(const std::string& path) override { note("added", path); }
  void changed(const std::string& path) override { note("changed", path); }
  void moved(const std::string& from, const std::string& to) override {
    note("moved", from);
    events.back() += " " + relative(to);
  }
  void removed(const std::string& path) override { note("removed", path); }
  void failed(const std::string& path, NSError* error) override {
    note("failed", path);
    reasons.push_back(error->localizedDescription()->lossyUTF8());
  }
  void kept(const std::string& path, NSError* error) override {
    note("kept", path);
    reasons.push_back(error->localizedDescription()->lossyUTF8());
  }

  std::vector<std::string> events;
  std::vector<std::string> reasons;
  std::uint64_t announced = 0;
  std::uint64_t done = 0;
  std::function<void(const std::string& event)> afterEvent;

 private:
  std::string relative(const std::string& path) const {
    return path == _folder ? "." : path.substr(_folder.size() + 1);
  }
  void note(const char* what, const std::string& path) {
    events.push_back(std::string(what) + " " + relative(path));
    if (afterEvent) afterEvent(events.back());
  }

  const std::string _folder;
};

class IndexRunTest : public testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directory(mail()); }

  std::filesystem::path mail() const { return _folder / "mail"; }
  std::string path(std::string_view name) const { return (mail() / name).string(); }
  void write(std::string_view name, std::string_view content) {
    std::filesystem::create_directories((mail() / name).parent_path());
    std::ofstream(mail() / name, std::ios::binary) << content;
  }
  void rename(std::string_view from, std::string_view to) {
    std::filesystem::create_directories((mail() / to).parent_path());
    std::filesystem::rename(mail() / from, mail() / to);
  }

  StoreWriter& store() {
    if (!_store) _store = StoreWriter::open((_folder / "mail.db").string(), &_error);
    EXPECT_TRUE(_store);
    return *_store;
  }
  /// Brings the store up to date and answers what happened.
  std::vector<std::string> index(std::vector<std::string> roots = {}) {
    if (roots.empty()) roots = {mail().string()};
    IndexRecorder recorder(mail().string());
    recorder.afterEvent = afterEvent;
    IndexRun run(store(), _settings, recorder);
    imports = 0;
    _error = nullptr;
    end = run.run(roots, &_error);
    counts = run.counts();
    hasTroubles = run.hasTroubles();
    reasons = recorder.reasons;
    EXPECT_EQ(recorder.done, end == IndexRun::End::Done ? recorder.announced : recorder.done);
    return recorder.events;
  }
  /// "name=text" of each message, with paths below the mail folder, in their order.
  std::vector<std::string> messages() {
    Statement rows(store().database(),
                   "SELECT path, body FROM file JOIN message USING (id) ORDER BY path");
    std::vector<std::string> found;
    while (rows.step(&_error) == Statement::Step::Row)
      found.push_back(std::string(rows.bytes(0)).substr(mail().string().size() + 1) + "=" +
                      std::string(rows.text(1)));
    return found;
  }
  /// "name read flagged replied" of each message; "unknown" where nothing says whether it was read.
  std::vector<std::string> states() {
    Statement rows(store().database(),
                   "SELECT path, CASE is_read WHEN 1 THEN ' read' WHEN 0 THEN ' unread'"
                   " ELSE ' unknown' END || iif(is_flagged, ' flagged', '') ||"
                   " iif(is_replied, ' replied', '') FROM file JOIN message USING (id)"
                   " ORDER BY path");
    std::vector<std::string> found;
    while (rows.step(&_error) == Statement::Step::Row)
      found.push_back(std::string(rows.bytes(0)).substr(mail().string().size() + 1) +
                      std::string(rows.text(1)));
    return found;
  }
  std::int64_t idOf(std::string_view name) {
    return store().idOfPath(path(name), &_error).value_or(0);
  }
  /// Gives a file its former times back after something was done to it.
  template <class Body>
  void keepingTimes(std::string_view name, Body body) {
    struct stat status;
    ASSERT_EQ(::stat(path(name).c_str(), &status), 0);
    body();
    const timespec times[] = {status.st_atim, status.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, path(name).c_str(), times, 0), 0);
  }

  IndexSettings settings() const {
    IndexSettings made;
    made.imports.isIsolated = false;
    made.imports.importer = _importer.bundle()->fileSystemRepresentation();
    made.imports.usesMailImporter = false;
    return made;
  }

  int imports = 0;
  bool saysRead = false;
  std::function<void(const std::string& path)> duringImport;
  std::function<void(const std::string& event)> afterEvent;
  IndexRun::End end = IndexRun::End::Done;
  IndexCounts counts;
  bool hasTroubles = false;
  std::vector<std::string> reasons;

  TemporaryFolder _folder;
  FakeImporter _importer{[this](NSMutableDictionary* attributes, NSString*, NSURL* url) {
    ++imports;
    const std::string path = url->fileSystemRepresentation();
    if (duringImport) duringImport(path);
    std::ifstream file(path, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    if (content == "broken") return false;
    attributes->setObjectForKey(NSString::stringWithLossyUTF8(content), "kMDItemTextContent"_ns);
    if (saysRead)
      attributes->setObjectForKey(NSNumber::numberWithBool(true), "com_apple_mail_read"_ns);
    return true;
  }};
  IndexSettings _settings = settings();
  // Long after all that the tests write, so that times can be trusted.
  FakeClock _clock{1e10};
  ScopedService<Clock> _installedClock{_clock};
  std::unique_ptr<StoreWriter> _store;
  Ref<NSError> _error;
};

}  // namespace kbx
