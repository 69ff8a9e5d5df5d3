// ImportWorkers: imports many files, in the order in which they are named.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/workers/ImportSettings.h"
#include "host/workers/Imports.h"

namespace kbx {

/// Belongs to one thread, and is made before the process has others: it may fork. While it lives,
/// the classic log is its own.
class ImportWorkers {
 public:
  /// Gives the next input; absent after the last one.
  using Next = Imports::Next;
  /// Takes what became of an input: its attributes, or the reason why there are none.
  using Take = std::function<void(const Input&, NSDictionary* attributes, NSError* error)>;
  /// Takes what became of an input: what was made of it, or the reason why there is nothing.
  using TakeMade = std::function<void(const Input&, const std::string& made, NSError* error)>;

  explicit ImportWorkers(const ImportSettings& settings);
  ~ImportWorkers();
  ImportWorkers(const ImportWorkers&) = delete;
  ImportWorkers& operator=(const ImportWorkers&) = delete;

  /// Whether there is an importer for messages; otherwise the reason says why, after the path of
  /// the bundle that was tried. To be asked once, before run().
  bool load(std::string* path, std::string* reason);

  /// Imports what `next` gives and calls `take` once for each, in the same order; an input that has
  /// an error already is passed on. Returns when all are taken, or after the input in hand when
  /// Interruption::isWished(). May be called again.
  ///
  /// Asks for inputs ahead of those that are taken, but only for so many as keep the workers busy.
  /// Both are called on this thread; what they raise ends the run and passes through.
  void run(const Next& next, const Take& take);
  /// The same for settings with a maker, and only for these.
  void runMaking(const Next& next, const TakeMade& take);

 private:
  std::unique_ptr<Imports> _imports;
};

}  // namespace kbx
