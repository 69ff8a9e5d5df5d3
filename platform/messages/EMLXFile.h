// EMLXFile: a message in the mail client's .emlx layout, read piece by piece.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/Export.h"
#include "platform/files/NSURL.h"
#include "platform/files/ReadableFile.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// A file of a count line, as many bytes of a message, and a property list.
///
/// The line may have blanks behind the count. A file without a count line is a message alone; one
/// that is shorter than it says ends early, and then has no list.
class KBX_PLATFORM EMLXFile {
 public:
  /// Opens the file. Fails as ReadableFile does.
  EMLXFile(NSURL* url, Ref<NSError>* error);
  EMLXFile(const EMLXFile&) = delete;
  EMLXFile& operator=(const EMLXFile&) = delete;

  bool isOpen() const noexcept { return _file.isOpen(); }
  /// The next bytes of the message, valid until the next call; none at its end, and none behind
  /// what cannot be read.
  std::string_view nextPiece();
  /// Bytes of the message that were handed out so far.
  std::uint64_t messageSize() const noexcept { return _messageSize; }
  /// The list behind the message, XML or binary; empty where there is none that can be read. Skips
  /// what is left of the message.
  Ref<NSDictionary> properties();
  /// Why the file could not be read to its end; absent when it could so far.
  NSError* failure() const noexcept { return _failure; }

 private:
  static constexpr std::size_t kPiece = 1 << 16;
  static constexpr std::size_t kLargestList = 1 << 24;

  void fill();
  void readCountLine();

  const Ref<NSURL> _url;
  ReadableFile _file;
  const std::unique_ptr<char[]> _buffer;
  std::string_view _bytes;           // of the buffer, not handed out yet
  std::uint64_t _left = UINT64_MAX;  // of the message
  std::uint64_t _messageSize = 0;
  Ref<NSError> _failure;
  bool _hasBegun = false;
};

}  // namespace kbx
