// ExportWriter: messages of a store in the form that another program takes.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/console/Output.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"

namespace kbx {

struct ExportedMessage {
  std::int64_t id;          // in the store
  const std::string& path;  // in bytes
  NSDictionary* attributes;
};

/// Writes one message after the other and keeps none.
class ExportWriter {
 public:
  virtual ~ExportWriter() = default;
  /// False with an error when the message cannot be written; nothing of it, or not all, is.
  virtual bool write(const ExportedMessage& message, Ref<NSError>* error) = 0;
};

/// One object a line, as `ferncase import --ndjson` prints them.
std::unique_ptr<ExportWriter> makeLineExport(Output& output);

/// Two lines for each: what to do with it, and the object. The id of a message in the store is its
/// id there, which it keeps when its file moves.
///
/// index  the name of the index that takes them
std::unique_ptr<ExportWriter> makeBulkExport(Output& output, std::string index);

/// The messages themselves, read from their files (MboxWriter).
std::unique_ptr<ExportWriter> makeMboxExport(Output& output);

}  // namespace kbx
