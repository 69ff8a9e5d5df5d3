#include "mail/HeaderText.h"

#include "mail/ASCII.h"
#include "mail/TransferDecoder.h"

namespace kbx {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

/// "=?charset?B?bytes?=".
struct EncodedWord {
  std::string_view charset;
  char encoding = 0;
  std::string_view bytes;
  std::size_t length = 0;  // of all of it
};

/// Where "?=" closes a word whose bytes begin at `start`; none where another word begins before,
/// so that a text full of beginnings is searched once.
std::size_t closingOf(std::string_view text, std::size_t start) {
  for (std::size_t at = text.find('?', start); at != kNone; at = text.find('?', at + 1)) {
    if (text.substr(at + 1).starts_with('=')) return at;
    if (at > start && text[at - 1] == '=') break;
  }
  return kNone;
}

/// Reads the word that the text begins with; false without one.
bool readWord(std::string_view text, EncodedWord* word) {
  constexpr std::size_t kLongestCharset = 75;
  if (!text.starts_with("=?")) return false;
  const std::string_view head = text.substr(2, kLongestCharset + 3);
  const std::size_t mark = head.find('?');
  if (mark == kNone || mark == 0 || mark + 2 >= head.size() || head[mark + 2] != '?') return false;
  word->charset = head.substr(0, mark);
  if (word->charset.find_first_of(" \t=") != kNone) return false;
  word->charset = word->charset.substr(0, word->charset.find('*'));  // a language follows
  word->encoding = asciiLower(head[mark + 1]) == 'b' ? 'B' : 'Q';
  if (word->encoding == 'Q' && asciiLower(head[mark + 1]) != 'q') return false;
  const std::size_t bytes = 2 + mark + 3;
  const std::size_t closing = closingOf(text, bytes);
  if (closing == kNone) return false;
  word->bytes = text.substr(bytes, closing - bytes);
  word->length = closing + 2;
  return true;
}

class WordReader {
 public:
  WordReader(std::string_view text, TextDecoder& decoder) : _text(text), _decoder(decoder) {}

  std::string read() {
    while (_at < _text.size()) {
      const std::size_t start = _text.find("=?", _at);
      if (start == kNone) break;
      EncodedWord word;
      if (readWord(_text.substr(start), &word))
        takeWord(start, word);
      else
        takePlain(start + 2);
    }
    takePlain(_text.size());
    flushWords();
    return std::move(_result);
  }

 private:
  void takeWord(std::size_t start, const EncodedWord& word) {
    const std::string_view between = _text.substr(_at, start - _at);
    const bool isNeighbour = _hasWords && trimmed(between).empty();
    if (!isNeighbour) takePlain(start);
    if (!isNeighbour || !isSameWord(_charset, word.charset)) flushWords();
    _charset = word.charset;
    _hasWords = true;
    _bytes += decodedWord(word.bytes, word.encoding);
    _at = start + word.length;
  }

  void takePlain(std::size_t end) {
    if (end <= _at) return;
    flushWords();
    _hasWords = false;
    _result += _decoder.text(std::string(_text.substr(_at, end - _at)), {});
    _at = end;
  }

  void flushWords() {
    if (_bytes.empty()) return;
    _result += _decoder.text(std::move(_bytes), _charset);
    _bytes.clear();
  }

  const std::string_view _text;
  TextDecoder& _decoder;
  std::size_t _at = 0;
  std::string _result;
  std::string _bytes;  // of words whose text is not made yet
  std::string_view _charset;
  bool _hasWords = false;
};

/// Line ends within a word say nothing.
void flattenLines(std::string& text) {
  for (char& c : text)
    if (c == '\n' || c == '\r' || c == '\t') c = ' ';
}

}  // namespace

std::string unfolded(std::string_view raw) {
  std::string line;
  line.reserve(raw.size());
  raw = trimmed(raw);
  for (std::size_t at = 0; at < raw.size();) {
    const std::size_t end = std::min(raw.find_first_of("\r\n", at), raw.size());
    line += raw.substr(at, end - at);
    if (end == raw.size()) break;
    while (!line.empty() && isSpace(line.back())) line.pop_back();
    line += ' ';
    at = std::min(raw.find_first_not_of(" \t\r\n", end), raw.size());
  }
  return line;
}

std::string withoutComments(std::string_view text) {
  std::string result;
  int depth = 0;
  for (char c : text) {
    depth += c == '(';
    if (depth == 0) result += c;
    depth -= c == ')' && depth > 0;
  }
  return result;
}

std::size_t encodedWordLength(std::string_view text) {
  EncodedWord word;
  return readWord(text, &word) ? word.length : 0;
}

std::string headerText(std::string_view raw, TextDecoder& decoder) {
  const std::string line = unfolded(raw);
  std::string text =
      line.find("=?") == kNone ? decoder.text(line, {}) : WordReader(line, decoder).read();
  flattenLines(text);
  const std::string_view inner = trimmed(text);
  return inner.size() == text.size() ? text : std::string(inner);
}

}  // namespace kbx
