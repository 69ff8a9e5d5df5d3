// Inotify: the watching of folders that every user has, up to a number of them.
#pragma once

#include "host/watch/FolderWatcher.h"

namespace kbx {

/// Without a descriptor, and with a failure, when the system gives none.
class Inotify final : public FolderWatcher {
 public:
  Inotify() { restart(); }
  ~Inotify() override { close(); }
  Inotify(const Inotify&) = delete;
  Inotify& operator=(const Inotify&) = delete;

  int failure() const { return _descriptor < 0 ? _failure : 0; }
  /// Can be read when there are notices.
  int descriptor() const { return _descriptor; }
  /// The notices that are there now, without waiting.
  std::vector<FolderNotice> take();

  int watch(const std::string& folder) override;
  void unwatch(int watch) override;
  int restart() override;
  Moment now() override { return Moment::clock::now(); }
  std::vector<FolderNotice> wait(std::optional<Moment> until) override;

 private:
  void close();
  bool read(std::vector<FolderNotice>& notices);

  int _descriptor = -1;
  int _failure = 0;
};

}  // namespace kbx
