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
  encoding = encoding.substr(0, encoding.find_first_of(" \t\r\n;("));
  if (isSameWord(encoding, "base64")) return Kind::Base64;
  if (isSameWord(encoding, "quoted-printable")) return Kind::QuotedPrintable;
  for (std::string_view name : {"x-uuencode", "uuencode", "x-uue"})
    if (isSameWord(encoding, name)) return Kind::UUEncode;
  return Kind::None;
}

TransferDecoder::TransferDecoder(std::string_view encoding)
    : _kind(kindOf(encoding)), _state(std::make_unique<_GMimeEncoding>()) {
  g_mime_encoding_init_decode(_state.get(), _kind == Kind::Base64 ? GMIME_CONTENT_ENCODING_BASE64
                                            : _kind == Kind::UUEncode
                                                ? GMIME_CONTENT_ENCODING_UUENCODE
                                                : GMIME_CONTENT_ENCODING_QUOTEDPRINTABLE);
}

TransferDecoder::~TransferDecoder() = default;

void TransferDecoder::add(std::string_view bytes) {
  if (_kind == Kind::Base64 && !_hasBegun) {
    const std::size_t missing = std::min(kTelling - _start.size(), bytes.size());
    _start += bytes.substr(0, missing);
    if (_start.size() < kTelling) return;
    begin();
    add(bytes.substr(missing));
  } else if (_kind == Kind::Base64 || _kind == Kind::QuotedPrintable) {
    step(bytes);
  } else {
    _decoded += bytes;
  }
}

/// Decides by what has come so far whether it is base64 at all.
void TransferDecoder::begin() {
  _hasBegun = true;
  if (isNoBase64(_start)) _kind = Kind::None;
  const std::string start = std::exchange(_start, {});
  add(start);
}

void TransferDecoder::step(std::string_view bytes) {
  constexpr std::size_t kPiece = 1 << 16;  // the library asks for room for the worst case
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kPiece, bytes.size())))
    decode(_state.get(), bytes.substr(0, kPiece), &_decoded);
}

void TransferDecoder::skipToUUEncodedData() {
  const std::size_t begin = _decoded.starts_with("begin ") ? 0 : _decoded.find("\nbegin ");
  if (begin == std::string::npos) return;
  const std::size_t data = _decoded.find('\n', begin + 1);
  if (data == std::string::npos) return;
  std::string encoded = _decoded.substr(data + 1);
  _decoded.clear();
  _state->state = GMIME_UUDECODE_STATE_BEGIN;
  step(encoded);
}

std::string TransferDecoder::take() {
  if (!_hasBegun) begin();
  if (_kind == Kind::UUEncode) skipToUUEncodedData();
  // Missing padding keeps the last bytes in the decoder.
  if (_kind == Kind::Base64) step("===");
  return std::move(_decoded);
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
