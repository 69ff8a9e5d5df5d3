// HTMLTextFlow: the text of an HTML document as a reader sees it, white space made even.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "platform/html/CharacterReferences.h"
#include "platform/markup/Characters.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kbx {

/// The end of the piece from `p` on that goes into the text as it is: up to a reference, to white
/// space other than one blank, or to the end. A blank before such white space belongs to it.
inline const char* endOfEvenText(const char* p, const char* end) {
#if defined(__SSE2__)
  // Characters have been cleaned: what is not above a blank is white space.
  for (; end - p >= 16; p += 15) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i blank = _mm_set1_epi8(' ');
    const __m128i space = _mm_cmpeq_epi8(_mm_min_epu8(block, blank), block);
    const auto spaces = static_cast<std::uint32_t>(_mm_movemask_epi8(space));
    const auto blanks = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(block, blank)));
    const auto references =
        static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(block, _mm_set1_epi8('&'))));
    const std::uint32_t seconds = spaces & (spaces << 1);  // white space behind white space
    const std::uint32_t stops = references | seconds | (spaces & ~blanks);
    // The last byte of the block is looked at again: what is before it is not known there.
    if ((stops & 0x7FFF) != 0) return p + std::countr_zero(stops);
    if ((spaces & 0x4000) != 0 && (spaces & 0x8000) != 0) return p + 15;
  }
#endif
  for (bool isBehindBlank = false; p != end; ++p) {
    if (*p == '&') return p;
    if (!isMarkupSpace(*p)) {
      isBehindBlank = false;
      continue;
    }
    if (isBehindBlank || *p != ' ') return p;
    isBehindBlank = true;
  }
  return end;
}

/// Puts text into a sink: runs of white space become one blank, none at the ends of a block; a
/// line feed parts two blocks and stands for a line break.
///
/// Sink has these, where a Place is where in the tree the text stands:
///   Mark mark(Place)           a place to come back to: behind all that is there now
///   text(Place, string_view)   text, at the end of the place
///   lines(Place, Mark, count)  so many line feeds at the mark; then comes text at the place
///   removeBlank()              takes back the blank that the last text ended in
template <class Sink>
class HTMLTextFlow {
 public:
  using Place = typename Sink::Place;

  explicit HTMLTextFlow(Sink& sink) : _sink(sink) {}

  /// Text with its white space still as written.
  ///
  /// hasReferences  false where "&" is nothing special
  void text(Place place, std::string_view run, bool hasReferences) {
    const char* p = run.data();
    const char* const end = p + run.size();
    while (p != end) {
      if (isSpaceSwallowed()) {
        while (p != end && isMarkupSpace(*p)) ++p;
        if (p == end) return;
      }
      if (*p == '&') {
        p = hasReferences ? reference(place, p, end) : ampersand(place, p);
      } else if (isMarkupSpace(*p) && *p != ' ') {
        blank(place);
        ++p;
      } else {
        p = evenText(place, p, end);
      }
    }
  }

  /// Text whose white space stays.
  void preservedText(Place place, std::string_view run, bool hasReferences) {
    while (!run.empty()) {
      const std::size_t stop = hasReferences ? run.find('&') : run.npos;
      if (stop != 0) put(place, run.substr(0, stop));
      if (stop == run.npos) return;
      run.remove_prefix(stop);
      const CharacterReference found = characterReference(run, false);
      put(place, found.length == 0 ? run.substr(0, 1) : found.text());
      run.remove_prefix(found.length == 0 ? 1 : found.length);
    }
  }

  /// The start of a block at the place.
  void blockStart(Place place) {
    takeBackBlank();
    if (!_state.hasText || _state.isAtLineStart || _state.lines > 0) return;
    _state.mark = _sink.mark(place);
    _state.lines = 1;
  }

  /// The end of a block; the place is what was around it. Line feeds that still wait for their text
  /// come behind the block.
  void blockEnd(Place place) {
    blockStart(place);
    if (_state.lines > 0) _state.mark = _sink.mark(place);
  }

  void lineBreak(Place place) {
    takeBackBlank();
    if (!_state.hasText) return;
    if (_state.lines++ == 0) _state.mark = _sink.mark(place);
  }

  /// What the flow remembers; to be put back behind text that is no part of it.
  struct State {
    typename Sink::Mark mark{};
    std::uint32_t lines = 0;  // line feeds that wait for the text behind them
    bool hasText = false;
    bool isBehindBlank = false;
    bool isAtLineStart = false;  // behind a line feed that is part of the text
  };
  State exchangeState(const State& state) { return std::exchange(_state, state); }

 private:
  bool isSpaceSwallowed() const {
    return _state.isBehindBlank || _state.lines > 0 || !_state.hasText || _state.isAtLineStart;
  }

  void takeBackBlank() {
    if (_state.isBehindBlank) _sink.removeBlank();
    _state.isBehindBlank = false;
  }

  void put(Place place, std::string_view piece) {
    if (piece.empty()) return;
    if (_state.lines > 0) _sink.lines(place, _state.mark, _state.lines);
    _state.lines = 0;
    _state.hasText = true;
    _state.isBehindBlank = false;
    _state.isAtLineStart = piece.back() == '\n';
    _sink.text(place, piece);
  }

  void blank(Place place) {
    put(place, " ");
    _state.isBehindBlank = true;
  }

  const char* evenText(Place place, const char* p, const char* end) {
    const char* const stop = endOfEvenText(p, end);
    put(place, {p, static_cast<std::size_t>(stop - p)});
    _state.isBehindBlank = stop[-1] == ' ';
    return stop;
  }

  const char* ampersand(Place place, const char* p) {
    put(place, {p, 1});
    return p + 1;
  }

  const char* reference(Place place, const char* p, const char* end) {
    const CharacterReference found =
        characterReference({p, static_cast<std::size_t>(end - p)}, false);
    if (found.length == 0) return ampersand(place, p);
    if (found.byteCount == 1 && isMarkupSpace(found.bytes[0])) {
      if (!isSpaceSwallowed()) blank(place);
    } else {
      put(place, found.text());
    }
    return p + found.length;
  }

  Sink& _sink;
  State _state;
};

}  // namespace kbx
