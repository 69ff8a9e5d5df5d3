#include <malloc.h>
#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "host/index/LargePages.h"

namespace kbx {
namespace {

#ifdef __GLIBC__

constexpr std::size_t kRoom = std::size_t{96} << 20;
constexpr std::uintptr_t kLargePage = std::uintptr_t{2} << 20;

// What the C library has unless it is told otherwise.
constexpr int kUsualTrimming = 128 << 10;
constexpr int kUsualMaps = 65536;
/// The largest that it takes: the index's table of words grows to some megabytes.
constexpr int kFromHeap = 32 << 20;

/// Asks for large pages for what lies in the block as whole ones.
void adviseLargePages(void* block, std::size_t size) {
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t begin = (address + kLargePage - 1) / kLargePage * kLargePage;
  const std::uintptr_t end = (address + size) / kLargePage * kLargePage;
  ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

#endif

}  // namespace

#ifdef __GLIBC__

// The C library knows large pages only for the whole life of a process, by its environment. But its
// heap keeps what lies at its end, and smaller pieces are cut from that: so one large block is
// taken from the heap, its pages are made large, and it is given back.
LargePages::LargePages() {
  if (!::mallopt(M_MMAP_MAX, 0)) return;  // another allocator, as sanitizers bring
  ::mallopt(M_TRIM_THRESHOLD, 2 * kRoom);
  if (void* const block = std::malloc(kRoom)) {
    adviseLargePages(block, kRoom);
    std::free(block);
  }
  ::mallopt(M_MMAP_MAX, kUsualMaps);
  ::mallopt(M_MMAP_THRESHOLD, kFromHeap);
}

LargePages::~LargePages() {
  ::mallopt(M_TRIM_THRESHOLD, kUsualTrimming);
  ::malloc_trim(0);
}

#else

LargePages::LargePages() = default;
LargePages::~LargePages() = default;

#endif

}  // namespace kbx
