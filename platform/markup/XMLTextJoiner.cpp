#include "platform/markup/XMLTextJoiner.h"

#include <algorithm>
#include <functional>

namespace kbx {

bool XMLTextJoiner::isFromSource(std::string_view piece) const {
  const std::less<> isBefore;
  return !isBefore(piece.data(), _source.data()) &&
         isBefore(piece.data(), _source.data() + _source.size());
}

void XMLTextJoiner::append(XMLNode* parent, std::string_view piece) {
  if (parent->lastChild && parent->lastChild == _last) return appendToLast(piece);
  _last = _tree.makeNode(NSXMLTextKind);
  _room = 0;
  parent->append(_last);
  if (isFromSource(piece))
    _last->text = piece;
  else
    appendToLast(piece);
}

void XMLTextJoiner::appendToLast(std::string_view piece) {
  constexpr std::size_t kSmallest = 32;
  const std::string_view old = _last->text;
  const std::size_t length = old.size() + piece.size();
  if (isFromSource(piece) && old.data() + old.size() == piece.data()) {
    _last->text = {old.data(), length};
    return;
  }
  if (_room < piece.size()) {
    const std::size_t capacity = std::max(2 * length, kSmallest);
    char* const larger = _tree.arena.bytes(capacity);
    std::copy(old.begin(), old.end(), larger);
    _last->text = {larger, old.size()};
    _room = capacity - old.size();
  }
  // What has room lies in memory that was made here.
  std::copy(piece.begin(), piece.end(), const_cast<char*>(_last->text.data()) + old.size());
  _last->text = {_last->text.data(), length};
  _room -= piece.size();
}

void XMLTextJoiner::removeLast() {
  _last->text.remove_suffix(1);
  if (_room > 0) ++_room;
  if (!_last->text.empty()) return;
  _last->parent->remove(_last);
  _last = nullptr;
}

}  // namespace kbx
