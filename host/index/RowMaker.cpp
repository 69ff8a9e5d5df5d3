#include "host/index/RowMaker.h"

#include "host/store/MessageBytes.h"
#include "platform/files/FileSystem.h"
#include "platform/files/ReadableFile.h"

namespace kbx {

std::optional<ContentHash> messageHashOf(const std::string& path, HashKey key) {
  FileStatus status;
  if (FileSystem::current().statusOfPath(path, &status) < 0) return std::nullopt;
  if (status.size > ReadableFile::kLargest) return std::nullopt;
  return contentHashOf(path, key, nullptr);
}

// The hash is taken before the import: should the file change between the two, its new state tells
// the next run.
void RowMaker::begin(const std::string& contents) { _hash = messageHashOf(contents, _key); }

std::optional<std::string> RowMaker::make(NSDictionary* attributes, Ref<NSError>* error) {
  const auto message = storedMessage(attributes, error);
  if (!message) return std::nullopt;
  std::string bytes = _hash ? bytesOf(*_hash) : "";
  bytes.insert(bytes.begin(), static_cast<char>(bytes.size()));
  appendMessage(bytes, *message);
  return bytes;
}

std::optional<MadeRow> madeRowIn(std::string_view bytes) {
  if (bytes.empty()) return std::nullopt;
  const auto length = static_cast<unsigned char>(bytes.front());
  bytes.remove_prefix(1);
  if (length > bytes.size()) return std::nullopt;
  MadeRow row;
  row.hash = contentHashIn(bytes.substr(0, length));
  if (length != 0 && !row.hash) return std::nullopt;
  bytes.remove_prefix(length);
  auto message = takeMessage(bytes);
  if (!message || !bytes.empty()) return std::nullopt;
  row.message = std::move(*message);
  return row;
}

}  // namespace kbx
