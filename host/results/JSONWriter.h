// JSONWriter: JSON that is written as it is made.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "host/console/Output.h"
#include "platform/objects/NSString.h"

namespace kbx {

class NSArray;
class NSDate;
class NSDictionary;
class NSNumber;
class RepeatedContent;

/// Writes one value after the other; the caller opens and closes in pairs and gives each value of
/// an object its key. What comes out is valid JSON in UTF-8, whatever the values are. Control
/// characters, characters that turn text around, and lone surrogates are written as escapes.
class JSONWriter {
 public:
  enum class Layout : std::uint8_t { OneLine, Indented };

  JSONWriter(Output& output, Layout layout) : _output(output), _layout(layout) {}

  void beginObject() { begin('{'); }
  void endObject() { end('}'); }
  void beginArray() { begin('['); }
  void endArray() { end(']'); }

  void key(NSString* name);
  void string(NSString* text);
  void integer(std::int64_t value);
  void null();
  /// An object as JSON has it.
  ///
  /// Strings, booleans and numbers as themselves, integers to the last digit; dates as
  /// internetDate() writes them; data in base 64; arrays; dictionaries with their keys sorted; any
  /// other object as its description. Null stands for what is absent or NSNull, for a real number
  /// or a date that has no form, for what is nested deeper than 512 levels, and for what makes the
  /// value write too much again (RepeatedContent).
  void value(NSObject* object);

 private:
  static constexpr std::size_t kDeepest = 512;

  void begin(char bracket);
  void end(char bracket);
  void beginElement();
  void newLine();
  void token(std::string_view text);
  void quoted(NSString* text);
  void number(NSNumber* number);
  void date(NSDate* date);
  void data(std::string_view bytes);
  void nested(NSObject* object, RepeatedContent& repeated);
  void array(NSArray* array, RepeatedContent& repeated);
  void dictionary(NSDictionary* dictionary, RepeatedContent& repeated);
  std::size_t indent() const { return _layout == Layout::Indented ? 2 * _hasElements.size() : 0; }

  Output& _output;
  const Layout _layout;
  std::vector<bool> _hasElements;  // of each open array and object
  bool _isAfterKey = false;
};

}  // namespace kbx
