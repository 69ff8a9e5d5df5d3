// TransferDecoder: the bytes of a body, its transfer encoding removed.
#pragma once

#include <gmime/gmime-encodings.h>

#include <string>
#include <string_view>

namespace kbx {

/// Decodes base64, quoted-printable and uuencode as it comes, in pieces of any size. Any other
/// encoding is none. What is no base64 although it says so is left as it is.
class TransferDecoder {
 public:
  /// encoding  the value of Content-Transfer-Encoding, in any case
  explicit TransferDecoder(std::string_view encoding);

  void add(std::string_view bytes);
  /// All bytes decoded so far. The decoder is used no more afterwards.
  std::string take();

 private:
  void step(std::string_view bytes);
  void skipToUUEncodedData();

  GMimeContentEncoding _kind;
  GMimeEncoding _state;
  bool _hasBegun = false;
  std::string _decoded;
};

/// The bytes of one piece in an encoding: 'B' or 'Q' of encoded words.
std::string decodedWord(std::string_view bytes, char encoding);

}  // namespace kbx
