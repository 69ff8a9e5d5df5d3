#include "host/store/PackedAttributes.h"

#include <zstd.h>

#include <cstdint>
#include <memory>

namespace kbx {
namespace {

using namespace std::string_view_literals;

/// Smaller lists hold names and addresses; what they would save is less than what reading them
/// would cost.
constexpr std::size_t kLargeList = 4096;
/// The quickest that is not much worse: messages are packed while others wait.
constexpr int kLevel = 1;
constexpr std::uint64_t kLargestRatio = 256;
/// How every compressed list begins, and no property list.
constexpr std::string_view kMark = "\x28\xB5\x2F\xFD"sv;

struct Freeing {
  void operator()(ZSTD_CCtx* context) const { ZSTD_freeCCtx(context); }
};

using Packer = std::unique_ptr<ZSTD_CCtx, Freeing>;

Packer newPacker() {
  Packer packer(ZSTD_createCCtx());
  if (!packer) return nullptr;
  ZSTD_CCtx_setParameter(packer.get(), ZSTD_c_compressionLevel, kLevel);
  ZSTD_CCtx_setParameter(packer.get(), ZSTD_c_checksumFlag, 1);
  return packer;
}

/// Its tables are larger than most messages, so each thread makes them once.
ZSTD_CCtx* packer() {
  thread_local const Packer packer = newPacker();
  return packer.get();
}

}  // namespace

std::string packedAttributes(std::string_view list) {
  if (list.size() < kLargeList || !packer()) return std::string(list);
  std::string packed(ZSTD_compressBound(list.size()), '\0');
  const std::size_t size =
      ZSTD_compress2(packer(), packed.data(), packed.size(), list.data(), list.size());
  const bool isWorthIt = !ZSTD_isError(size) && size < list.size() - list.size() / 8 &&
                         list.size() / kLargestRatio < size;
  if (!isWorthIt) return std::string(list);
  packed.resize(size);
  packed.shrink_to_fit();
  return packed;
}

std::optional<std::string> unpackedAttributes(std::string_view stored) {
  if (!stored.starts_with(kMark)) return std::string(stored);
  const std::uint64_t size = ZSTD_getFrameContentSize(stored.data(), stored.size());
  // Values that tell of an error are the largest of all.
  if (size / kLargestRatio > stored.size()) return std::nullopt;
  std::string list(size, '\0');
  const std::size_t count = ZSTD_decompress(list.data(), list.size(), stored.data(), stored.size());
  return count == list.size() ? std::optional(std::move(list)) : std::nullopt;
}

}  // namespace kbx
