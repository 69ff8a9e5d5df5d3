// PropertyListWriter: an XML property list that is written as it is made.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/console/Output.h"
#include "platform/objects/NSString.h"

namespace kbx {

class NSArray;
class NSDictionary;
class NSNumber;
class RepeatedContent;

/// Writes one value after the other between begin() and end(); the caller opens and closes in pairs
/// and gives each value of a dictionary its key. What comes out can be read by every reader of
/// property lists, whatever the values are: characters that XML cannot hold and lone surrogates
/// become U+FFFD, and what could drive a terminal is written as a reference.
class PropertyListWriter {
 public:
  explicit PropertyListWriter(Output& output) : _output(output) {}

  void begin();
  void end();
  void beginArray() { open("array"); }
  void endArray() { close("array"); }
  void beginDictionary() { open("dict"); }
  void endDictionary() { close("dict"); }

  /// Written with the value that follows.
  void key(NSString* name) { _key = name; }
  void string(NSString* text);
  void integer(std::int64_t value);
  /// A path in bytes: a string, or data where no string can hold it as it is.
  void path(const std::string& bytes);
  /// An object as property lists have it.
  ///
  /// Strings, numbers, truth values, data, arrays; dates in whole seconds; dictionaries with their
  /// keys sorted; any other object as its description. Left out are NSNull and what is absent,
  /// dates outside the years 0 to 9999, what is nested deeper than 500 levels, and what makes the
  /// value write too much again (RepeatedContent).
  void value(NSObject* object);

 private:
  static constexpr std::size_t kDeepest = 500;  // readers take 512, with those around the value

  void open(std::string_view tag);
  void close(std::string_view tag);
  void beginElement();
  void element(std::string_view tag, std::string_view ours);
  void escaped(NSString* text);
  void number(NSNumber* number);
  void date(NSObject* date);
  void data(std::string_view bytes);
  void nested(NSObject* object, RepeatedContent& repeated);
  void array(NSArray* array, RepeatedContent& repeated);
  void dictionary(NSDictionary* dictionary, RepeatedContent& repeated);

  Output& _output;
  std::size_t _level = 0;  // open arrays and dictionaries
  Ref<NSString> _key;      // of the next value
};

}  // namespace kbx
