#include "host/results/Results.h"

#include "host/console/Escaping.h"
#include "host/results/AttributeText.h"
#include "host/results/JSONWriter.h"
#include "host/results/PropertyListWriter.h"
#include "platform/files/FileNames.h"

namespace kbx {
namespace {

class TextResults final : public Results {
 public:
  TextResults(Output& output, bool hasHeadings) : _output(output), _hasHeadings(hasHeadings) {}

  void delivered(const std::string& path, NSDictionary* attributes) override {
    if (_hasHeadings) heading(path);
    writeAttributeText(_output, attributes);
    _isFirst = false;
  }
  void failed(const std::string&, NSError*) override {}

 private:
  void heading(const std::string& path) {
    _output.write(_isFirst ? "== " : "\n== ");
    writePath(_output, path);
    _output.write('\n');
  }

  Output& _output;
  const bool _hasHeadings;
  bool _isFirst = true;
};

void writeError(JSONWriter& json, NSError* error) {
  json.beginObject();
  json.key("domain"_ns);
  json.string(error->domain());
  json.key("code"_ns);
  json.integer(error->code());
  json.key("description"_ns);
  json.string(error->localizedDescription());
  json.endObject();
}

void writeResult(JSONWriter& json, const std::string& path, NSDictionary* attributes,
                 NSError* error) {
  json.beginObject();
  json.key("path"_ns);
  json.string(stringWithFileSystemRepresentation(path));
  json.key(error ? "error"_ns : "attributes"_ns);
  if (error)
    writeError(json, error);
  else
    json.value(attributes);
  json.endObject();
}

class JSONResults final : public Results {
 public:
  explicit JSONResults(Output& output)
      : _output(output), _json(output, JSONWriter::Layout::Indented) {}

  void begin() override { _json.beginArray(); }
  void delivered(const std::string& path, NSDictionary* attributes) override {
    writeResult(_json, path, attributes, nullptr);
  }
  void failed(const std::string& path, NSError* error) override {
    writeResult(_json, path, nullptr, error);
  }
  void end() override {
    _json.endArray();
    _output.write('\n');
  }

 private:
  Output& _output;
  JSONWriter _json;
};

class PropertyListResults final : public Results {
 public:
  explicit PropertyListResults(Output& output) : _list(output) {}

  void begin() override {
    _list.begin();
    _list.beginArray();
  }
  void delivered(const std::string& path, NSDictionary* attributes) override {
    beginEntry(path);
    _list.key("attributes"_ns);
    _list.value(attributes);
    _list.endDictionary();
  }
  void failed(const std::string& path, NSError* error) override {
    beginEntry(path);
    _list.key("error"_ns);
    _list.beginDictionary();
    _list.key("code"_ns);
    _list.integer(error->code());
    _list.key("description"_ns);
    _list.string(error->localizedDescription());
    _list.key("domain"_ns);
    _list.string(error->domain());
    _list.endDictionary();
    _list.endDictionary();
  }
  void end() override {
    _list.endArray();
    _list.end();
  }

 private:
  void beginEntry(const std::string& path) {
    _list.beginDictionary();
    _list.key("path"_ns);
    _list.path(path);
  }

  PropertyListWriter _list;
};

class LineResults final : public Results {
 public:
  explicit LineResults(Output& output) : _output(output) {}

  void delivered(const std::string& path, NSDictionary* attributes) override {
    line(path, attributes, nullptr);
  }
  void failed(const std::string& path, NSError* error) override { line(path, nullptr, error); }

 private:
  void line(const std::string& path, NSDictionary* attributes, NSError* error) {
    JSONWriter json(_output, JSONWriter::Layout::OneLine);
    writeResult(json, path, attributes, error);
    _output.write('\n');
  }

  Output& _output;
};

}  // namespace

std::unique_ptr<Results> makeTextResults(Output& output, bool hasHeadings) {
  return std::make_unique<TextResults>(output, hasHeadings);
}

std::unique_ptr<Results> makeJSONResults(Output& output) {
  return std::make_unique<JSONResults>(output);
}

std::unique_ptr<Results> makePropertyListResults(Output& output) {
  return std::make_unique<PropertyListResults>(output);
}

std::unique_ptr<Results> makeLineResults(Output& output) {
  return std::make_unique<LineResults>(output);
}

}  // namespace kbx
