// Maintenance: what `ferncase index` says and does about a store as a whole.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/store/IndexCheck.h"
#include "platform/objects/NSError.h"

namespace kbx {

struct StoreStatus {
  std::int64_t messages = 0;
  std::int64_t failures = 0;  // files without a message
  std::int64_t version = 0;   // of the schema
  std::uint64_t size = 0;     // in bytes, what waits in the log among them
  double lastChange = 0;      // seconds since 1970
};

/// Absent with an error when there is no store to read.
std::optional<StoreStatus> statusOf(const std::string& path, Ref<NSError>* error);

/// Reads the whole store and answers one sentence for each thing that is wrong with it, at most
/// 100; none when it is sound. Waits for no writer, and none waits for it, but the pages that it
/// reads stay in the log meanwhile.
///
/// Absent with an error when it cannot be read so far that a check could begin.
std::optional<std::vector<std::string>> checkStore(const std::string& path, Ref<NSError>* error,
                                                   const CheckProgress& progress = {});

/// Brings the index into the form that is searched fastest, gives unused space back and empties the
/// log. Takes the right to write; false with an error when another process has it.
bool optimizeStore(const std::string& path, Ref<NSError>* error);

}  // namespace kbx
