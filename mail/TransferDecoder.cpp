#include "mail/TransferDecoder.h"

#include <gmime/gmime-encodings.h>

#include <algorithm>
#include <utility>

#include "mail/ASCII.h"

namespace kbx {
namespace {

constexpr std::size_t kTelling = 1024;  // bytes that tell base64 from plain text

bool isBase64Letter(char c) { return isASCIIAlphanumeric(c) || c == '+' || c == '/' || c == '='; }

/// Whether the start of a body is plain text under a wrong name: every twentieth character of what
/// is no line end does not belong to base64.
bool isNoBase64(std::string_view start) {
  start = trimmed(start);
  std::size_t wrong = 0, right = 0;
  for (char c : start)
    if (isBase64Letter(c))
      ++right;
    else if (c != '\n' && c != '\r')
      ++wrong;
  return wrong * 20 > right;
}

/// Whether what stands at the start is surely base64, although text may follow: letters of it up to
/// its end, too many for a word.
bool startsWithBase64(std::string_view start) {
  constexpr std::size_t kTooLongForAWord = 20;
  start = start.substr(0, start.find("\n\n"));
  start = start.substr(0, start.find('='));
  return start.size() >= kTooLongForAWord && std::ranges::all_of(start, [](char c) {
           return isBase64Letter(c) || c == '\r' || c == '\n';
         });
}

/// The place behind an equals sign or an empty line, with which base64 may end; npos without one.
std::size_t possibleEnd(std::string_view bytes, bool isAtLine) {
  if (isAtLine && bytes.starts_with('\n')) return 1;
  const std::size_t padding = bytes.find('=');
  const std::size_t gap = bytes.substr(0, padding).find("\n\n");
  if (gap != std::string_view::npos) return gap + 2;
  return padding == std::string_view::npos ? padding : padding + 1;
}

std::string_view firstLine(std::string_view text) {
  text = text.substr(0, text.find('\n'));
  if (text.ends_with('\r')) text.remove_suffix(1);
  return text;
}

/// The bytes of one line of uuencode, whose last blanks may be gone.
void appendUUDecoded(std::string& bytes, std::string_view line) {
  const auto sixBits = [&](std::size_t i) {
    return i < line.size() ? (static_cast<unsigned>(line[i]) - ' ') & 0x3F : 0U;
  };
  const std::size_t count = sixBits(0);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t first = 1 + i / 3 * 4 + i % 3;
    const auto shift = static_cast<unsigned>(2 * (i % 3 + 1));
    bytes += static_cast<char>(sixBits(first) << shift | sixBits(first + 1) >> (6 - shift));
  }
}

/// Text with the data in it decoded that stands between the lines "begin …" and "end".
std::string uudecoded(std::string text) {
  const std::string_view all = text;
  const std::size_t begin = all.starts_with("begin ") ? 0 : all.find("\nbegin ");
  if (begin == std::string_view::npos) return text;
  std::size_t at = begin == 0 ? begin : begin + 1;
  std::string result(all.substr(0, at));
  while ((at = all.find('\n', at)) != std::string_view::npos && ++at < all.size()) {
    const std::string_view line = firstLine(all.substr(at));
    if (line == "end") return result += all.substr(at + line.size());
    appendUUDecoded(result, line);
  }
  return result;
}

std::size_t decode(GMimeEncoding* state, std::string_view bytes, std::string* out) {
  const std::size_t before = out->size();
  out->resize(before + g_mime_encoding_outlen(state, bytes.size()));
  const std::size_t count =
      g_mime_encoding_step(state, bytes.data(), bytes.size(), out->data() + before);
  out->resize(before + count);
  return count;
}

}  // namespace

TransferDecoder::Kind TransferDecoder::kindOf(std::string_view encoding) {
  encoding = trimmed(encoding);
  if (encoding.starts_with('(')) encoding = trimmed(encoding.substr(encoding.find(')') + 1));
  if (encoding.starts_with('"')) encoding.remove_prefix(1);
  encoding = encoding.substr(0, encoding.find_first_of(" \t\r\n;(\""));
  if (isSameWord(encoding, "base64")) return Kind::Base64;
  if (isSameWord(encoding, "quoted-printable")) return Kind::QuotedPrintable;
  for (std::string_view name : {"x-uuencode", "uuencode", "x-uue"})
    if (isSameWord(encoding, name)) return Kind::UUEncode;
  return Kind::None;
}

TransferDecoder::TransferDecoder(std::string_view encoding)
    : _kind(kindOf(encoding)), _state(std::make_unique<_GMimeEncoding>()) {
  initState();
}

TransferDecoder::~TransferDecoder() = default;

void TransferDecoder::initState() {
  g_mime_encoding_init_decode(_state.get(), _kind == Kind::Base64
                                                ? GMIME_CONTENT_ENCODING_BASE64
                                                : GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE);
}

void TransferDecoder::add(std::string_view bytes) {
  if (_kind == Kind::Base64)
    addBase64(bytes);
  else if (_kind == Kind::QuotedPrintable)
    step(bytes);
  else
    _decoded += bytes;
}

void TransferDecoder::addBase64(std::string_view bytes) {
  while (!bytes.empty()) {
    if (!_hasBegun) {
      const std::size_t missing = std::min(kTelling - _start.size(), bytes.size());
      _start += bytes.substr(0, missing);
      bytes.remove_prefix(missing);
      if (_start.size() < kTelling) return;
      begin();
      if (_kind != Kind::Base64) return add(bytes);
      continue;
    }
    const std::size_t end = possibleEnd(bytes, _isAtLine);
    const std::string_view piece = bytes.substr(0, end);
    bytes.remove_prefix(piece.size());
    step(piece);
    _isAtLine = piece.ends_with('\n');
    if (piece.ends_with('=')) finishBase64();
    if (end != std::string_view::npos && _endsLeft > 0) {
      --_endsLeft;
      _hasBegun = false;
    }
  }
}

/// Decides by what has come since the start, or since a possible end, whether it is base64 at all.
void TransferDecoder::begin() {
  _hasBegun = true;
  const std::string start = std::exchange(_start, {});
  if (isNoBase64(start) && !startsWithBase64(start)) {
    finishBase64();
    _kind = Kind::None;
    const bool isInLine = !_decoded.empty() && !_decoded.ends_with('\n');
    if (isInLine && !start.starts_with('\n')) _decoded += '\n';
  }
  add(start);
}

/// Takes out what missing padding keeps in the library's decoder. More base64 may follow.
void TransferDecoder::finishBase64() {
  step("===");
  initState();
}

void TransferDecoder::step(std::string_view bytes) {
  constexpr std::size_t kPiece = 1 << 16;  // the library asks for room for the worst case
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kPiece, bytes.size())))
    decode(_state.get(), bytes.substr(0, kPiece), &_decoded);
}

std::string TransferDecoder::take() {
  while (_kind == Kind::Base64 && !_hasBegun) begin();
  if (_kind == Kind::Base64) finishBase64();
  return _kind == Kind::UUEncode ? uudecoded(std::move(_decoded)) : std::move(_decoded);
}

std::string decodedWord(std::string_view bytes, char encoding) {
  std::string decoded;
  if (encoding == 'B') {
    GMimeEncoding state;
    g_mime_encoding_init_decode(&state, GMIME_CONTENT_ENCODING_BASE64);
    decode(&state, bytes, &decoded);
    decode(&state, "===", &decoded);
    return decoded;
  }
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const bool isEscape = bytes[i] == '=' && i + 2 < bytes.size() &&
                          digitValue(bytes[i + 1], 16) >= 0 && digitValue(bytes[i + 2], 16) >= 0;
    if (!isEscape) {
      decoded += bytes[i] == '_' ? ' ' : bytes[i];
      continue;
    }
    decoded += static_cast<char>(digitValue(bytes[i + 1], 16) * 16 + digitValue(bytes[i + 2], 16));
    i += 2;
  }
  return decoded;
}

}  // namespace kbx
