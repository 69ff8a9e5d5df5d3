// EventLine: what happened, as JSON for other programs.
#pragma once

#include <cstdint>
#include <string>

#include "host/results/JSONWriter.h"
#include "platform/files/FileNames.h"

namespace kbx {

/// One event: an object on a line of its own, written out at once.
class EventLine {
 public:
  EventLine(Output& output, NSString* kind) : _output(output), _json(output, kOneLine) {
    _json.beginObject();
    string("event"_ns, kind);
  }
  ~EventLine() {
    _json.endObject();
    _output.write('\n');
    _output.flush();
  }
  EventLine(const EventLine&) = delete;
  EventLine& operator=(const EventLine&) = delete;

  void string(NSString* key, NSString* text) {
    _json.key(key);
    _json.string(text);
  }
  void path(NSString* key, const std::string& bytes) {
    string(key, stringWithFileSystemRepresentation(bytes));
  }
  void count(NSString* key, std::uint64_t number) {
    _json.key(key);
    _json.integer(static_cast<std::int64_t>(number));
  }

 private:
  static constexpr auto kOneLine = JSONWriter::Layout::OneLine;

  Output& _output;
  JSONWriter _json;
};

}  // namespace kbx
