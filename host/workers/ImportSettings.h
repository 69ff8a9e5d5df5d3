// ImportSettings: what all imports of a run have in common.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/console/Diagnostics.h"
#include "host/workers/MessageMaker.h"

namespace kbx {

/// What one message may take. The process that needs more is ended, and the message fails.
struct ImportLimits {
  std::uint64_t memory = std::uint64_t{512}
                         << 20;  // bytes, beside a multiple of the message's size
  unsigned processorSeconds = 60;
  unsigned seconds = 120;  // by the clock on the wall
};

struct ImportSettings {
  unsigned workers = 0;    // processes at work at the same time; 0 for one on each processor
  bool isIsolated = true;  // false: everything happens in this process, one after the other
  ImportLimits limits;     // nothing limits imports in this process
  std::vector<std::string> inputs;      // the files and folders that are named: what may be read
  std::optional<std::string> importer;  // the bundle to ask for every file; else installed ones
  bool usesMailImporter = true;         // false: the raw text of a message is an answer
  bool isStagedPrivately = true;        // false: the mail importer's copy lies beside the message
  std::shared_ptr<MessageMaker> maker;  // what to make of the attributes; absent for nothing
  Diagnostics* log = nullptr;           // where importers' log lines are shown; nullptr for nowhere
};

}  // namespace kbx
