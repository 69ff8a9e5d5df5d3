// Frames: what a worker and the process that it works for say to each other.
//
// A frame is a head of three numbers (kind, number of the input, length in bytes) and that many
// bytes. Both sides are the same program, so numbers are in this machine's form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kbx {

enum class FrameKind : std::uint64_t {
  Import = 1,  // to the worker: a file's path, a NUL, the path of the copy to be read or nothing
  Ready,       // what protects the worker
  Unready,     // there is no importer: the path of the bundle, a NUL, the reason
  Attributes,  // values (Values.h)
  Made,        // what the settings' maker made of the attributes
  Failure,     // an error (Values.h)
  Denied,      // the file cannot be read from within; maybe from without
  Log          // a line of the classic log (Values.h)
};

struct Frame {
  FrameKind kind;
  std::uint64_t number;
  std::string_view bytes;  // valid until the reader is asked again
};

void appendFrame(std::string& bytes, FrameKind kind, std::uint64_t number,
                 std::string_view content);
/// The head alone, for content that follows in pieces.
void appendFrameHead(std::string& bytes, FrameKind kind, std::uint64_t number,
                     std::uint64_t length);

/// The two texts in the content of a frame, on both sides of its first NUL.
struct TextPair {
  std::string first, second;
};
TextPair textPairIn(std::string_view content);
std::string bytesOfTextPair(std::string_view first, std::string_view second);

/// Takes frames out of a stream of bytes.
class FrameReader {
 public:
  /// Room for at least `size` further bytes, of which added() tells how many came.
  std::span<char> room(std::size_t size);
  void added(std::size_t count) { _end += count; }

  /// The next whole frame; absent until more bytes came.
  std::optional<Frame> next();
  /// The length of the frame that has begun, as its head claims; 0 where none has.
  std::uint64_t claimedLength() const;

 private:
  std::string _bytes;
  std::size_t _start = 0, _end = 0;  // of the bytes that came and were not taken
};

}  // namespace kbx
