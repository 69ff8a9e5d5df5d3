// FoldingTable: what is known of each unit when texts are folded, looked up instead of asked.
#pragma once

#include <array>
#include <atomic>

#include "platform/Export.h"
#include "platform/text/CompareOptions.h"

namespace kbx {

/// The keys of single units for one choice of options. Pages of 256 units are made at first use,
/// kept for ever and shared by all threads.
class KBX_PLATFORM FoldingTable {
 public:
  struct Entry {
    char16_t key;   // its key where it stands alone, if that is simple
    bool isSimple;  // the key is one unit
    bool mayJoin;   // it joins what stands before it, or a pair of which it is half may
  };

  /// The table for what the options say of case, diacritics and widths.
  static const FoldingTable& of(NSStringCompareOptions options);

  Entry operator[](char16_t unit) const {
    const Page* page = _pages[unit >> 8].load(std::memory_order_acquire);
    return (page ? *page : makePage(unit >> 8))[unit & 0xFF];
  }

 private:
  using Page = std::array<Entry, 256>;

  const Page& makePage(unsigned number) const;

  NSStringCompareOptions _options{};
  mutable std::array<std::atomic<const Page*>, 256> _pages{};
};

}  // namespace kbx
