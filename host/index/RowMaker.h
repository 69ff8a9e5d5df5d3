// RowMaker: makes of each message, where it is imported, all that the store wants to know of it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/index/ContentHash.h"
#include "host/store/StoredMessage.h"
#include "host/workers/MessageMaker.h"

namespace kbx {

struct MadeRow {
  std::optional<ContentHash> hash;  // of the content before the import
  StoredMessage message;
};

class RowMaker final : public MessageMaker {
 public:
  /// key  of the store, for the hash
  explicit RowMaker(HashKey key) : _key(key) {}

  void begin(const std::string& contents) override;
  std::optional<std::string> make(NSDictionary* attributes, Ref<NSError>* error) override;

 private:
  const HashKey _key;
  std::optional<ContentHash> _hash;
};

/// The hash of a file that may be a message. Absent for one that cannot be read, or is too large to
/// be a message and not worth the time.
std::optional<ContentHash> messageHashOf(const std::string& path, HashKey key);

/// What RowMaker made, in its bytes; absent for any others.
std::optional<MadeRow> madeRowIn(std::string_view bytes);

}  // namespace kbx
