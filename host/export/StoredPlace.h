// StoredPlace: where a message lay when it was imported, and whether it lies there still.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/store/Store.h"

namespace kbx {

struct StoredPlace {
  std::string path;  // absolute, in bytes
  FileState state;
  std::optional<std::string> failure;  // why the file gave no message
};

/// Of a file that the store knows; absent without an error when it knows none of this id.
std::optional<StoredPlace> storedPlace(StoreReader& store, std::int64_t id, Ref<NSError>* error);

enum class Presence : std::uint8_t { Same, Changed, Gone };

/// Whether a file is what it was; one that cannot be looked at counts as gone.
Presence presenceOf(const StoredPlace& place);

}  // namespace kbx
