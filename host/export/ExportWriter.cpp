#include "host/export/ExportWriter.h"

#include <utility>

#include "host/export/MboxWriter.h"
#include "host/results/Attributes.h"
#include "host/results/JSONWriter.h"
#include "host/results/Results.h"
#include "platform/files/FileNames.h"

namespace kbx {
namespace {

class LineExport final : public ExportWriter {
 public:
  explicit LineExport(Output& output) : _results(makeLineResults(output)) {}
  bool write(const ExportedMessage& message, Ref<NSError>*) override {
    _results->delivered(message.path, message.attributes);
    return true;
  }

 private:
  const std::unique_ptr<Results> _results;
};

class BulkExport final : public ExportWriter {
 public:
  BulkExport(Output& output, std::string index)
      : _output(output), _index(NSString::stringWithLossyUTF8(index)) {}
  bool write(const ExportedMessage& message, Ref<NSError>* error) override;

 private:
  void writeAction(std::int64_t id);

  Output& _output;
  const Ref<NSString> _index;
};

void BulkExport::writeAction(std::int64_t id) {
  JSONWriter json(_output, JSONWriter::Layout::OneLine);
  json.beginObject();
  json.key("index"_ns);
  json.beginObject();
  json.key("_index"_ns);
  json.string(_index);
  json.key("_id"_ns);
  json.string(NSString::stringWithLossyUTF8(std::to_string(id)));
  json.endObject();
  json.endObject();
  _output.write('\n');
}

bool BulkExport::write(const ExportedMessage& message, Ref<NSError>* /*error*/) {
  writeAction(message.id);
  JSONWriter json(_output, JSONWriter::Layout::OneLine);
  json.beginObject();
  json.key("path"_ns);
  json.string(stringWithFileSystemRepresentation(message.path));
  for (const auto& [name, value] : sortedAttributes(message.attributes)) {
    json.key(name);
    json.value(value);
  }
  json.endObject();
  _output.write('\n');
  return true;
}

class MboxExport final : public ExportWriter {
 public:
  explicit MboxExport(Output& output) : _output(output) {}
  bool write(const ExportedMessage& message, Ref<NSError>* error) override {
    return writeMboxMessage(_output, message.path, message.attributes, error);
  }

 private:
  Output& _output;
};

}  // namespace

std::unique_ptr<ExportWriter> makeLineExport(Output& output) {
  return std::make_unique<LineExport>(output);
}

std::unique_ptr<ExportWriter> makeBulkExport(Output& output, std::string index) {
  return std::make_unique<BulkExport>(output, std::move(index));
}

std::unique_ptr<ExportWriter> makeMboxExport(Output& output) {
  return std::make_unique<MboxExport>(output);
}

}  // namespace kbx
