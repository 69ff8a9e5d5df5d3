#include "host/workers/Frames.h"

#include <algorithm>
#include <cstring>

namespace kbx {
namespace {

/// Bytes that are not kept for the next frame.
constexpr std::size_t kMuchMemory = 1 << 20;

struct Head {
  FrameKind kind;
  std::uint64_t number;
  std::uint64_t length;
};

}  // namespace

void appendFrameHead(std::string& bytes, FrameKind kind, std::uint64_t number,
                     std::uint64_t length) {
  const Head head{kind, number, length};
  bytes.append(reinterpret_cast<const char*>(&head), sizeof head);
}

void appendFrame(std::string& bytes, FrameKind kind, std::uint64_t number,
                 std::string_view content) {
  appendFrameHead(bytes, kind, number, content.size());
  bytes.append(content);
}

TextPair textPairIn(std::string_view content) {
  const std::size_t middle = std::min(content.find('\0'), content.size());
  return {std::string(content.substr(0, middle)),
          std::string(content.substr(std::min(middle + 1, content.size())))};
}

std::string bytesOfTextPair(std::string_view first, std::string_view second) {
  return std::string(first).append(1, '\0').append(second);
}

std::span<char> FrameReader::room(std::size_t size) {
  if (_start == _end) _start = _end = 0;
  if (_bytes.size() - _end < size && _start > 0) {
    std::memmove(_bytes.data(), _bytes.data() + _start, _end - _start);
    _end -= _start;
    _start = 0;
  }
  if (_bytes.size() - _end < size) {
    // Growing by halves costs little, but never beyond the frame that is coming.
    const std::size_t needed = _end + size;
    const std::uint64_t frame = claimedLength() + sizeof(Head);
    _bytes.resize(std::max<std::uint64_t>(needed, std::min<std::uint64_t>(2 * needed, frame)));
  }
  return std::span(_bytes).subspan(_end);
}

std::uint64_t FrameReader::claimedLength() const {
  Head head{};
  if (_end - _start < sizeof head) return 0;
  std::memcpy(&head, _bytes.data() + _start, sizeof head);
  return head.length;
}

std::optional<Frame> FrameReader::next() {
  Head head;
  const std::size_t size = _end - _start;
  if (size == 0 && _bytes.size() > kMuchMemory) {
    _bytes = {};
    _start = _end = 0;
  }
  if (size < sizeof head) return std::nullopt;
  std::memcpy(&head, _bytes.data() + _start, sizeof head);
  if (size - sizeof head < head.length) return std::nullopt;
  const std::string_view content(_bytes.data() + _start + sizeof head, head.length);
  _start += sizeof head + head.length;
  return Frame{head.kind, head.number, content};
}

}  // namespace kbx
