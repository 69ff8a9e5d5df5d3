#include "platform/text/ComposedCharacters.h"

#include <unicode/ubrk.h>
#include <unicode/utf16.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>

#include "platform/objects/NSException.h"

namespace kbx {
namespace {

using Iterator = std::unique_ptr<UBreakIterator, decltype(&ubrk_close)>;

/// One iterator kept for each thread, because opening one costs more than most questions.
Iterator& spareIterator() {
  thread_local Iterator spare(nullptr, &ubrk_close);
  return spare;
}

Iterator takeIterator() {
  if (spareIterator()) return std::exchange(spareIterator(), Iterator(nullptr, &ubrk_close));
  UErrorCode status = U_ZERO_ERROR;
  UBreakIterator* opened = ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status);
  if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
  return {opened, &ubrk_close};
}

void setText(UBreakIterator* iterator, std::u16string_view units) {
  if (units.size() > std::numeric_limits<std::int32_t>::max())
    throw std::length_error("a text of this length has no composed characters");
  UErrorCode status = U_ZERO_ERROR;
  ubrk_setText(iterator, units.data(), static_cast<std::int32_t>(units.size()), &status);
  if (U_FAILURE(status)) throw std::runtime_error(u_errorName(status));
}

/// Whether a sequence begins at `index` for sure. Nothing below U+0300 joins what stands before it.
bool isPlainStart(const NSString* text, std::size_t index) {
  if (index == 0 || index == text->length()) return true;
  constexpr char16_t kFirstMark = 0x300;
  return text->visitUnits([=](auto units) {
    return static_cast<char16_t>(units[index - 1]) < kFirstMark &&
           static_cast<char16_t>(units[index]) < kFirstMark;
  });
}

bool isInsidePair(const NSString* text, std::size_t index) {
  return index > 0 && U16_IS_TRAIL(text->characterAtIndex(index)) &&
         U16_IS_LEAD(text->characterAtIndex(index - 1));
}

}  // namespace

ComposedCharacters::~ComposedCharacters() {
  if (!_iterator) return;
  setText(_iterator, u"");  // the text may be gone when the iterator is used again
  spareIterator().reset(_iterator);
}

UBreakIterator* ComposedCharacters::iterator() {
  if (_iterator) return _iterator;
  Iterator taken = takeIterator();
  _text->visitUnits([&](auto units) {
    if constexpr (sizeof(units[0]) == sizeof(char16_t))
      setText(taken.get(), {units.data(), units.size()});
  });
  return _iterator = taken.release();
}

std::size_t ComposedCharacters::startOfSequenceAt(std::size_t index) {
  if (isPlainStart(_text, index)) return index;
  // The iterator rounds down to a whole pair before it looks, and so would miss that one.
  const auto place = static_cast<std::int32_t>(index - (isInsidePair(_text, index) ? 1 : 0));
  if (ubrk_isBoundary(iterator(), place)) return static_cast<std::size_t>(place);
  return static_cast<std::size_t>(ubrk_preceding(iterator(), place));
}

std::size_t ComposedCharacters::endOfSequenceAt(std::size_t index) {
  if (isPlainStart(_text, index + 1)) return index + 1;
  return static_cast<std::size_t>(ubrk_following(iterator(), static_cast<std::int32_t>(index)));
}

NSRange NSString::rangeOfComposedCharacterSequenceAtIndex(std::size_t index) const {
  if (index >= length())
    raiseRange("-[NSString rangeOfComposedCharacterSequenceAtIndex:]: Index out of bounds");
  ComposedCharacters characters(this);
  const std::size_t start = characters.startOfSequenceAt(index);
  return {start, characters.endOfSequenceAt(index) - start};
}

}  // namespace kbx
