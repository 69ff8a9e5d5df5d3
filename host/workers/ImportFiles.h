// ImportFiles: the files that importing needs.
#pragma once

#include "host/workers/ImportSettings.h"
#include "host/workers/Sandbox.h"

namespace kbx {

/// What the inputs of a run and the libraries need: the files and folders that are named, for more
/// than 1024 files the folders that they lie in; importers, shared libraries and their data, and
/// the preferences. Where a copy is to lie beside each message, its folder can be written.
AllowedFiles filesForImporting(const ImportSettings& settings);

}  // namespace kbx
