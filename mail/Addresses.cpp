#include "mail/Addresses.h"

#include "mail/ASCII.h"
#include "mail/HeaderText.h"

namespace kbx {
namespace {

constexpr std::size_t kLongest = 1 << 15;  // of a name or an address; the rest is cut off

/// Blanks around an address's dots and its sign are no part of it.
std::string tightened(std::string_view text) {
  std::string address;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t next = std::min(text.find_first_not_of(' ', i), text.size() - 1);
    const bool isBehindMark = !address.empty() && (address.back() == '.' || address.back() == '@');
    const bool isBeforeMark = text[next] == '.' || text[next] == '@';
    if (text[i] != ' ' || (!isBehindMark && !isBeforeMark)) address += text[i];
    if (text[i] == ' ') i = next - 1;
  }
  return address;
}

/// Reads one value from left to right, a character at a time.
class AddressReader {
 public:
  AddressReader(std::string_view text, TextDecoder& decoder) : _text(text), _decoder(decoder) {}

  std::vector<Mailbox> read() {
    while (_at < _text.size()) take(_text[_at]);
    endMailbox();
    return std::move(_found);
  }

 private:
  void take(char c) {
    switch (c) {
      case '"':
        return takeQuoted();
      case '(':
        return takeComment();
      case '<':
        return takeAngle();
      case ',':
      case ';':
        ++_at;
        return endMailbox();
      case ':':
        // The name of a group ends here, unless an address has begun: "a@[IPv6:::1]".
        ++_at;
        if (_phrase.find('@') == std::string::npos) return clear();
        _phrase += c;
        return;
      case '[':
        return takeUpTo(']');
      case '=':
        return takeWord();
      case '>':
        // Behind an address it is one too many.
        if (!_hasAngle) _phrase += c;
        ++_at;
        return;
      default:
        _phrase += c;
        ++_at;
    }
  }

  /// An encoded word is text, whatever characters its writer left as they are.
  void takeWord() {
    const std::size_t length = std::max<std::size_t>(encodedWordLength(_text.substr(_at)), 1);
    _phrase += _text.substr(_at, length);
    _at += length;
  }

  void takeUpTo(char closing) {
    const std::size_t end =
        std::min(_text.find_first_of(std::string{closing, ',', '>'}, _at), _text.size());
    _phrase += _text.substr(_at, end - _at);
    _at = end;
    if (_at < _text.size() && _text[_at] == closing) _phrase += _text[_at++];
  }

  void takeQuoted() {
    std::string inner;
    bool isEscaped = false;
    std::size_t at = _at + 1;
    for (; at < _text.size() && (isEscaped || _text[at] != '"'); ++at) {
      isEscaped = !isEscaped && _text[at] == '\\';
      if (!isEscaped) inner += _text[at];
    }
    if (at >= _text.size() && !_isQuoteMissing) {
      // Without a closing quote the whole rest would become one name.
      _isQuoteMissing = true;
    }
    if (_isQuoteMissing) {
      ++_at;
      return;
    }
    const bool isLocalPart = at + 1 < _text.size() && _text[at + 1] == '@';
    _phrase += isLocalPart ? std::string(_text.substr(_at, at + 1 - _at)) : inner;
    _at = at + 1;
  }

  void takeComment() {
    int depth = 0;
    bool isEscaped = false;
    const std::size_t start = _at + 1;
    for (; _at < _text.size(); ++_at) {
      const char c = _text[_at];
      if (isEscaped) {
        isEscaped = false;
        continue;
      }
      isEscaped = c == '\\';
      depth += c == '(' ? 1 : c == ')' ? -1 : 0;
      if (depth == 0) break;
    }
    const std::string_view inner = _text.substr(start, _at - start);
    if (!trimmed(inner).empty()) _comment = inner;
    if (_at < _text.size()) ++_at;
  }

  void takeAngle() {
    std::size_t end = _at + 1;
    while (end < _text.size() && _text[end] != '>' && _text[end] != '<') ++end;
    if (end < _text.size() && _text[end] == '<') {  // "a <b <c@d>": the first one is text
      _phrase += _text.substr(_at, end - _at);
      _at = end;
      return;
    }
    std::string_view inner = _text.substr(_at + 1, end - _at - 1);
    // A missing closing mark must not swallow the mailboxes behind it.
    if (end == _text.size()) end = std::min(_text.find_first_of(",;", _at), _text.size()) - 1;
    if (end + 1 < _at + 1 + inner.size()) inner = inner.substr(0, end - _at);
    if (const auto route = inner.find(':'); inner.starts_with('@') && route != inner.npos)
      inner.remove_prefix(route + 1);
    _address = trimmed(inner);
    _hasAngle = true;
    _at = end + 1;
  }

  void endMailbox() {
    Mailbox mailbox;
    const std::string_view phrase = trimmed(std::string_view(_phrase).substr(0, kLongest));
    const std::string_view comment = _comment.substr(0, kLongest);
    if (_hasAngle) {
      mailbox.address = addressText(_address.substr(0, kLongest));
      mailbox.name = headerText(phrase.empty() ? comment : phrase, _decoder);
    } else {
      mailbox.address = addressText(phrase);
      mailbox.name = headerText(comment, _decoder);
    }
    if (!mailbox.name.empty() || !mailbox.address.empty()) _found.push_back(std::move(mailbox));
    clear();
  }

  /// An address may have been encoded as if it were a phrase.
  std::string addressText(std::string_view bytes) {
    std::string text = headerText(bytes, _decoder);
    if (startsWithWord(text, "mailto:")) text.erase(0, 7);
    if (text.find('(') != std::string::npos && !text.starts_with('"'))
      text = trimmed(withoutComments(text));
    const bool isToTighten =
        text.find(' ') != std::string::npos && text.find('@') != std::string::npos;
    return isToTighten ? tightened(text) : text;
  }

  void clear() {
    _phrase.clear();
    _comment = {};
    _address = {};
    _hasAngle = false;
  }

  const std::string_view _text;
  TextDecoder& _decoder;
  std::size_t _at = 0;
  std::string _phrase;
  std::string_view _comment, _address;
  bool _hasAngle = false;
  bool _isQuoteMissing = false;
  std::vector<Mailbox> _found;
};

}  // namespace

std::vector<Mailbox> mailboxes(std::string_view raw, TextDecoder& decoder) {
  const std::string line = unfolded(raw);
  return AddressReader(line, decoder).read();
}

}  // namespace kbx
