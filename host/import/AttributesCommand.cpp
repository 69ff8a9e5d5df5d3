#include "host/import/AttributesCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "host/results/JSONWriter.h"
#include "host/results/KnownAttributes.h"

namespace kbx {
namespace {

Ref<NSString> textOf(std::string_view ours) { return NSString::stringWithUTF8(ours); }

/// How wide a column is for the longest text in it.
std::size_t widthOf(std::string_view KnownAttribute::*column) {
  std::size_t width = 0;
  for (const KnownAttribute& each : knownAttributes())
    width = std::max(width, (each.*column).size());
  return width;
}

void writeText(Output& output) {
  constexpr std::size_t kGap = 2;
  const std::size_t nameWidth = widthOf(&KnownAttribute::name) + kGap;
  const std::size_t typeWidth = widthOf(&KnownAttribute::type) + kGap;
  for (const KnownAttribute& each : knownAttributes()) {
    output.write(each.name);
    output.writeBlanks(nameWidth - each.name.size());
    output.write(each.type);
    output.writeBlanks(typeWidth - each.type.size());
    output.write(each.meaning);
    output.write('\n');
  }
}

void writeJSON(Output& output) {
  JSONWriter json(output, JSONWriter::Layout::Indented);
  json.beginArray();
  for (const KnownAttribute& each : knownAttributes()) {
    json.beginObject();
    json.key("name"_ns);
    json.string(textOf(each.name));
    json.key("type"_ns);
    json.string(textOf(each.type));
    json.key("meaning"_ns);
    json.string(textOf(each.meaning));
    json.endObject();
  }
  json.endArray();
  output.write('\n');
}

class AttributesCommand final : public Command {
 public:
  std::string_view name() const override { return "attributes"; }
  std::string_view summary() const override {
    return "List the attributes that importing a message can find.";
  }
  std::string_view operands() const override { return ""; }
  std::string_view notes() const override {
    return "Each line holds name, type and meaning. \"ferncase import\" prints those that begin "
           "with\n"
           "org_ferncase_mail_ with --extra only. Importers of others may deliver more.";
  }
  void declareOptions(CLI::App& options) override {
    options.add_flag("--json", _isJSON, "Print one JSON array");
  }
  ExitCode run(std::vector<std::string> operands, Console& console) override {
    if (!operands.empty()) throw UsageError("attributes takes no " + operands.front());
    if (_isJSON)
      writeJSON(console.output);
    else
      writeText(console.output);
    return kDone;
  }

 private:
  bool _isJSON = false;
};

}  // namespace

std::unique_ptr<Command> makeAttributesCommand() { return std::make_unique<AttributesCommand>(); }

}  // namespace kbx
