#include "platform/text/FoldingTable.h"

#include <unicode/utf16.h>

#include <cstdint>
#include <string>

#include "platform/text/CaseFolding.h"

namespace kbx {
namespace {

constexpr NSStringCompareOptions kOptions[] = {
    NSCaseInsensitiveSearch, NSDiacriticInsensitiveSearch, NSWidthInsensitiveSearch};

FoldingTable::Entry makeEntry(char16_t unit, NSStringCompareOptions options) {
  // Half of a pair says nothing of the whole.
  if (U16_IS_SURROGATE(unit)) return {0, false, true};
  const std::u16string key = foldedKey({unit}, options);
  const bool isSimple = key.size() == 1;
  return {isSimple ? key[0] : u'\0', isSimple, joinsBefore(unit, options)};
}

}  // namespace

const FoldingTable& FoldingTable::of(NSStringCompareOptions options) {
  static auto* const tables = [] {
    auto* made = new FoldingTable[8];
    for (unsigned i = 0; i < 8; ++i)
      for (unsigned bit = 0; bit < 3; ++bit)
        if (i >> bit & 1) made[i]._options = made[i]._options | kOptions[bit];
    return made;
  }();
  unsigned index = 0;
  for (unsigned bit = 0; bit < 3; ++bit)
    if (options & kOptions[bit]) index |= 1u << bit;
  return tables[index];
}

const FoldingTable::Page& FoldingTable::makePage(unsigned number) const {
  auto* const page = new Page;
  for (unsigned i = 0; i < page->size(); ++i)
    (*page)[i] = makeEntry(static_cast<char16_t>(number << 8 | i), _options);
  const Page* other = nullptr;
  if (_pages[number].compare_exchange_strong(other, page, std::memory_order_acq_rel)) return *page;
  delete page;  // another thread was first
  return *other;
}

}  // namespace kbx
