// ContentField: a header value with parameters, such as Content-Type.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "mail/TextDecoder.h"

namespace kbx {

/// "text/plain; charset=utf-8": the value before the first semicolon, and the parameters.
class ContentField {
 public:
  ContentField() = default;
  /// Takes any bytes for a value; what cannot be understood is left out.
  explicit ContentField(std::string_view raw);

  /// In small letters, without comments; empty when there is none.
  const std::string& value() const noexcept { return _value; }
  /// The bytes of a parameter; empty without one. Names are in small letters, the first of a name
  /// wins.
  std::string parameter(std::string_view name) const;
  /// The text of a parameter, from any of its forms: extended with a charset, cut into numbered
  /// pieces, made of encoded words, or bytes. Empty without one.
  std::string text(std::string_view name, TextDecoder& decoder) const;

 private:
  struct Parameter {
    std::string name;         // without the marks of its form
    int piece = -1;           // its number, when it is one of several
    bool isExtended = false;  // percent escapes, in the first piece behind a charset and a language
    std::string value;
  };
  void addParameter(std::string_view name, std::string value);
  std::vector<const Parameter*> piecesOf(std::string_view name) const;

  std::string _value;
  std::vector<Parameter> _parameters;
};

}  // namespace kbx
