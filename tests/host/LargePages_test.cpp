#include "host/index/LargePages.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/Sanitizers.h"

namespace kbx {
namespace {

/// The flags of the mapping in which an address of this process lies, as the kernel tells them.
std::string flagsAt(const void* address) {
  const auto wanted = reinterpret_cast<std::uintptr_t>(address);
  std::ifstream mappings("/proc/self/smaps");
  bool isInside = false;
  for (std::string line; std::getline(mappings, line);) {
    std::uintptr_t begin = 0, end = 0;
    if (std::sscanf(line.c_str(), "%lx-%lx ", &begin, &end) == 2)
      isInside = begin <= wanted && wanted < end;
    else if (isInside && line.starts_with("VmFlags:"))
      return line + " ";
  }
  return "";
}

using Pieces = std::vector<std::unique_ptr<char[]>>;

/// Small pieces, 32 MiB together: more than lies in the gaps of the heap.
Pieces manyPieces() {
  constexpr std::size_t kSize = 512;
  Pieces pieces(std::size_t{32} << 11);
  for (auto& piece : pieces) piece = std::make_unique<char[]>(kSize);
  return pieces;
}

TEST(LargePages, ManySmallPiecesLieInLargePages) {
  if (kIsSanitized) GTEST_SKIP() << "the sanitizer brings an allocator of its own";
  if (!std::filesystem::exists("/sys/kernel/mm/transparent_hugepage"))
    GTEST_SKIP() << "this kernel has no large pages";
  const LargePages largePages;
  const Pieces pieces = manyPieces();
  EXPECT_NE(flagsAt(pieces[pieces.size() / 2].get()).find(" hg "), std::string::npos);
}

TEST(LargePages, MemoryOutlivesThem) {
  auto largePages = std::make_unique<LargePages>();
  const Pieces pieces = manyPieces();
  for (const auto& piece : pieces) piece[0] = 'x';
  largePages = nullptr;
  for (const auto& piece : pieces) ASSERT_EQ(piece[0], 'x');
  const LargePages again;
  EXPECT_EQ(manyPieces().size(), pieces.size());
}

}  // namespace
}  // namespace kbx
