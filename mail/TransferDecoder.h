// TransferDecoder: the bytes of a body, its transfer encoding removed.
#pragma once

#include <memory>
#include <string>
#include <string_view>

struct _GMimeEncoding;  // of the MIME library, whose headers stay out of ours

namespace kbx {

/// Decodes base64, quoted-printable and uuencode as it comes, in pieces of any size. Any other
/// encoding is none. What is no base64 although it says so is left as it is, also behind an end of
/// base64: mailing lists add their foot there.
class TransferDecoder {
 public:
  /// encoding  the value of Content-Transfer-Encoding, in any case
  explicit TransferDecoder(std::string_view encoding);
  ~TransferDecoder();

  void add(std::string_view bytes);
  /// All bytes decoded so far. The decoder is used no more afterwards.
  std::string take();

 private:
  void begin();
  void addBase64(std::string_view bytes);
  void step(std::string_view bytes);
  void finishBase64();
  void initState();

  enum class Kind : unsigned char { None, Base64, QuotedPrintable, UUEncode };
  static Kind kindOf(std::string_view encoding);

  Kind _kind;
  const std::unique_ptr<_GMimeEncoding> _state;
  bool _hasBegun = false;
  std::string _start;      // of base64, until it is known to be such
  int _endsLeft = 64;      // how often what follows is judged anew
  bool _isAtLine = false;  // the last byte was a line feed
  std::string _decoded;
};

/// The bytes of one piece in an encoding: 'B' or 'Q' of encoded words.
std::string decodedWord(std::string_view bytes, char encoding);

}  // namespace kbx
