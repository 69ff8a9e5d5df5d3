#include "host/import/ImportersCommand.h"

#include <CLI/CLI.hpp>

#include "host/console/Escaping.h"
#include "host/import/ImporterBundle.h"
#include "host/import/ImporterCatalog.h"
#include "host/results/JSONWriter.h"
#include "platform/files/FileNames.h"

namespace kbx {
namespace {

struct Listed {
  InstalledImporter importer;
  std::string reason;  // why it cannot be loaded; empty when it can
};

void writeText(Output& output, const Listed& listed) {
  writePath(output, listed.importer.path);
  output.write('\n');
  for (const std::string& type : listed.importer.types) {
    output.write("    takes ");
    writePath(output, type);
    output.write('\n');
  }
  output.write(listed.reason.empty() ? "    can be loaded" : "    cannot be loaded: ");
  writePath(output, listed.reason);
  output.write('\n');
}

void writeJSON(JSONWriter& json, const Listed& listed) {
  json.beginObject();
  json.key("path"_ns);
  json.string(stringWithFileSystemRepresentation(listed.importer.path));
  json.key("types"_ns);
  json.beginArray();
  for (const std::string& type : listed.importer.types)
    json.string(NSString::stringWithLossyUTF8(type));
  json.endArray();
  json.key("failure"_ns);
  if (listed.reason.empty())
    json.null();
  else
    json.string(stringWithFileSystemRepresentation(listed.reason));
  json.endObject();
}

class ImportersCommand final : public Command {
 public:
  std::string_view name() const override { return "importers"; }
  std::string_view summary() const override {
    return "List the importer bundles that are installed.";
  }
  std::string_view operands() const override { return ""; }
  void declareOptions(CLI::App& options) override {
    options.add_flag("--json", _isJSON, "Print one JSON array");
  }
  ExitCode run(std::vector<std::string> operands, Console& console) override;

 private:
  bool _isJSON = false;
};

/// Loads all of them, one beside the other as a run does: two bundles can be in each other's way.
std::vector<Listed> listImporters(std::vector<std::unique_ptr<ImporterBundle>>& bundles) {
  std::vector<Listed> list;
  for (InstalledImporter& importer : installedImporters()) {
    Listed& listed = list.emplace_back(Listed{std::move(importer), ""});
    auto url = NSURL::fileURLWithFileSystemRepresentation(listed.importer.path, true);
    if (auto bundle = ImporterBundle::load(url, &listed.reason))
      bundles.push_back(std::move(bundle));
  }
  return list;
}

ExitCode ImportersCommand::run(std::vector<std::string> operands, Console& console) {
  if (!operands.empty()) throw UsageError("importers takes no " + operands.front());
  std::vector<std::unique_ptr<ImporterBundle>> bundles;
  const auto list = listImporters(bundles);
  if (!_isJSON) {
    for (const Listed& listed : list) writeText(console.output, listed);
    return kDone;
  }
  JSONWriter json(console.output, JSONWriter::Layout::Indented);
  json.beginArray();
  for (const Listed& listed : list) writeJSON(json, listed);
  json.endArray();
  console.output.write('\n');
  return kDone;
}

}  // namespace

std::unique_ptr<Command> makeImportersCommand() { return std::make_unique<ImportersCommand>(); }

}  // namespace kbx
