#include "host/search/FoundWriter.h"

#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>

#include "host/console/Escaping.h"
#include "host/results/AttributeFilter.h"
#include "host/results/JSONWriter.h"
#include "host/results/Results.h"
#include "host/search/LocalTime.h"
#include "host/search/QueryFault.h"
#include "platform/files/FileNames.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSNumber.h"

namespace kbx {
namespace {

using Form = FoundSettings::Form;

constexpr std::string_view kMarkColour = "\x1B[1;31m", kDimColour = "\x1B[2m",
                           kNoColour = "\x1B[0m";
constexpr std::size_t kSenderColumns = 24;

/// The text on one line, escaped.
std::string shown(std::string_view utf8) {
  StringOutput output;
  writeOnOneLine(output, NSString::stringWithLossyUTF8(utf8));
  return output.text();
}

void writeSnippet(Output& output, const Snippet& snippet, bool hasColours) {
  const std::string_view text = snippet.text;
  std::size_t place = 0;
  output.write("    ");
  for (const auto& [begin, end] : snippet.marks) {
    output.write(shown(text.substr(place, begin - place)));
    if (hasColours) output.write(kMarkColour);
    output.write(shown(text.substr(begin, end - begin)));
    if (hasColours) output.write(kNoColour);
    place = end;
  }
  output.write(shown(text.substr(place)));
  output.write('\n');
}

class PathWriter final : public FoundWriter {
 public:
  PathWriter(Output& output, FoundSettings settings)
      : _output(output), _settings(std::move(settings)) {}

  bool found(Search& search, std::int64_t id, Ref<NSError>* error) override {
    const auto path = search.path(id, error);
    if (!path) return false;
    _output.write(*path);
    _output.write(_settings.form == Form::NulPaths ? '\0' : '\n');
    if (!_settings.hasSnippets) return true;
    const auto snippet = search.snippet(id, error);
    if (snippet) writeSnippet(_output, *snippet, _settings.hasColours);
    return snippet.has_value();
  }

 private:
  Output& _output;
  const FoundSettings _settings;
};

/// "2024-05-17 13:30" of the user's clock; blanks for an unknown date.
std::string shownDate(std::optional<double> seconds) {
  constexpr double kBeyondEveryYear = 2.5e11;
  if (!seconds || !(*seconds > -kBeyondEveryYear && *seconds < kBeyondEveryYear))
    return std::string(16, ' ');
  const CivilTime time = LocalTime::current().civilTime(*seconds);
  char text[96];
  std::snprintf(text, sizeof text, "%04lld-%02d-%02d %02d:%02d", static_cast<long long>(time.year),
                time.month, time.day, time.hour, time.minute);
  return text;
}

/// The first sender's name, or the address where there is none.
std::string_view nameIn(std::string_view sender) {
  const std::size_t address = sender.find(" <");
  const std::size_t comma = sender.find(", ");
  return sender.substr(0, std::min(address, comma));
}

/// As many characters as fit into the columns, and blanks up to there.
std::string fitted(std::string text, std::size_t columns) {
  while (shownColumns(text) > columns) {
    do text.pop_back();
    while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80);
    if (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0xC0) text.pop_back();
  }
  return text + std::string(columns - shownColumns(text), ' ');
}

class LineWriter final : public FoundWriter {
 public:
  LineWriter(Output& output, FoundSettings settings)
      : _output(output), _settings(std::move(settings)) {}

  bool found(Search& search, std::int64_t id, Ref<NSError>* error) override {
    const auto message = search.message(id, error);
    if (!message) return false;
    write(*message);
    if (!_settings.hasSnippets) return true;
    const auto snippet = search.snippet(id, error);
    if (snippet) writeSnippet(_output, *snippet, _settings.hasColours);
    return snippet.has_value();
  }

 private:
  void write(const FoundMessage& message) {
    _output.write(shownDate(message.date));
    _output.write("  ");
    _output.write(fitted(shown(nameIn(message.sender)), kSenderColumns));
    _output.write("  ");
    _output.write(message.subject.empty() ? "-" : shown(message.subject));
    _output.write("  ");
    if (_settings.hasColours) _output.write(kDimColour);
    writePath(_output, message.path);
    if (_settings.hasColours) _output.write(kNoColour);
    _output.write('\n');
  }

  Output& _output;
  const FoundSettings _settings;
};

class AttributeWriter final : public FoundWriter {
 public:
  AttributeWriter(Output& output, StoreReader& reader, FoundSettings settings)
      : _reader(reader),
        _filter{.names = std::move(settings.names)},
        _results(makeTextResults(output, true)) {}

  bool found(Search& search, std::int64_t id, Ref<NSError>* error) override {
    const auto path = search.path(id, error);
    const auto attributes = path ? _reader.attributesOf(id, error) : nullptr;
    if (!attributes) return false;
    _results->delivered(*path, _filter.wantedOf(attributes));
    return true;
  }

 private:
  StoreReader& _reader;
  const AttributeFilter _filter;
  const std::unique_ptr<Results> _results;
};

/// A row of pieces, of which those that were found say so.
void writeSnippet(JSONWriter& json, const Snippet& snippet) {
  const auto piece = [&](std::size_t begin, std::size_t end, bool isMatch) {
    if (begin == end) return;
    json.beginObject();
    json.key("text"_ns);
    json.string(
        NSString::stringWithLossyUTF8(std::string_view(snippet.text).substr(begin, end - begin)));
    json.key("match"_ns);
    json.value(NSNumber::numberWithBool(isMatch));
    json.endObject();
  };
  std::size_t place = 0;
  json.beginArray();
  for (const auto& [begin, end] : snippet.marks) {
    piece(place, begin, false);
    piece(begin, end, true);
    place = end;
  }
  piece(place, snippet.text.size(), false);
  json.endArray();
}

/// What an object holds.
struct Found {
  std::int64_t id = 0;
  FoundMessage message;
  std::optional<Snippet> snippet;
  Ref<NSDictionary> attributes;
};

void writeText(JSONWriter& json, NSString* key, const std::string& text) {
  json.key(key);
  if (text.empty()) return json.null();
  json.string(NSString::stringWithLossyUTF8(text));
}

void writeFound(JSONWriter& json, const Found& found) {
  const FoundMessage& message = found.message;
  json.beginObject();
  json.key("id"_ns);
  json.value(NSNumber::numberWithInteger(found.id));
  json.key("path"_ns);
  json.string(stringWithFileSystemRepresentation(message.path));
  json.key("date"_ns);
  json.value(message.date ? NSDate::dateWithTimeIntervalSince1970(*message.date) : nullptr);
  writeText(json, "from"_ns, message.sender);
  writeText(json, "subject"_ns, message.subject);
  if (found.snippet) {
    json.key("snippet"_ns);
    writeSnippet(json, *found.snippet);
  }
  if (found.attributes) {
    json.key("attributes"_ns);
    json.value(found.attributes);
  }
  json.endObject();
}

class ObjectWriter final : public FoundWriter {
 public:
  ObjectWriter(Output& output, StoreReader& reader, FoundSettings settings)
      : _output(output),
        _reader(reader),
        _settings(std::move(settings)),
        _filter{.names = _settings.names},
        _array(output, JSONWriter::Layout::Indented) {}

  void begin() override {
    if (_settings.form == Form::JSON) _array.beginArray();
  }
  void end() override {
    if (_settings.form != Form::JSON) return;
    _array.endArray();
    _output.write('\n');
  }

  bool found(Search& search, std::int64_t id, Ref<NSError>* error) override {
    Found found;
    found.id = id;
    const auto message = search.message(id, error);
    if (!message) return false;
    found.message = *message;
    if (_settings.hasSnippets && !(found.snippet = search.snippet(id, error))) return false;
    if (!_settings.names.empty()) {
      const auto attributes = _reader.attributesOf(id, error);
      if (!attributes) return false;
      found.attributes = _filter.wantedOf(attributes);
    }
    write(found);
    return true;
  }

 private:
  void write(const Found& found) {
    if (_settings.form == Form::JSON) return writeFound(_array, found);
    JSONWriter line(_output, JSONWriter::Layout::OneLine);
    writeFound(line, found);
    _output.write('\n');
  }

  Output& _output;
  StoreReader& _reader;
  const FoundSettings _settings;
  const AttributeFilter _filter;
  JSONWriter _array;
};

}  // namespace

std::unique_ptr<FoundWriter> makeFoundWriter(Output& output, StoreReader& reader,
                                             FoundSettings settings) {
  switch (settings.form) {
    case Form::JSON:
    case Form::JSONLines:
      return std::make_unique<ObjectWriter>(output, reader, std::move(settings));
    case Form::Attributes:
      return std::make_unique<AttributeWriter>(output, reader, std::move(settings));
    case Form::Lines:
      return std::make_unique<LineWriter>(output, std::move(settings));
    case Form::Paths:
    case Form::NulPaths:
      break;
  }
  return std::make_unique<PathWriter>(output, std::move(settings));
}

}  // namespace kbx
