// ImportWorker: the work of one worker process.
#pragma once

#include "host/import/ScratchFolder.h"
#include "host/workers/ImportSettings.h"
#include "host/workers/Progress.h"
#include "host/workers/Sandbox.h"

namespace kbx {

/// What a worker finds when it begins.
struct WorkerPlace {
  const ImportSettings& settings;
  const ScratchFolder& memory;  // where it stages messages, in memory and on disk
  const ScratchFolder& disk;
  const AllowedFiles& files;  // what else it may read and write
  Progress& progress;
};

/// Gives up what it does not need, loads the importer, and imports what it is told to until nobody
/// is at the other end of the stream.
void workAsImportWorker(const WorkerPlace& place, int stream);

}  // namespace kbx
