#include "host/doctor/DoctorCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "host/console/Escaping.h"
#include "host/doctor/Examinations.h"
#include "host/results/JSONWriter.h"
#include "platform/files/FileNames.h"

namespace kbx {
namespace {

/// In the order in which they are told. A further one is a function and a line here.
constexpr Examination kExaminations[] = {
    examineImporters, examineImport, examineFolders,
    examineSandbox,   examineStore,  examinePreferences,
};

const char* nameOf(Finding::Level level) {
  switch (level) {
    case Finding::Level::Fine:
      return "ok";
    case Finding::Level::Warning:
      return "warning";
    case Finding::Level::Problem:
      return "problem";
  }
  return "";
}

void writeText(Output& output, const Finding& finding) {
  constexpr std::size_t kWidth = 9;
  const std::string_view name = nameOf(finding.level);
  output.write(name);
  output.writeBlanks(kWidth - name.size());
  writePath(output, finding.what);
  output.write('\n');
  if (finding.advice.empty()) return;
  output.writeBlanks(kWidth);
  writePath(output, finding.advice);
  output.write('\n');
}

void writeJSON(JSONWriter& json, const Finding& finding) {
  json.beginObject();
  json.key("level"_ns);
  json.string(stringWithFileSystemRepresentation(nameOf(finding.level)));
  json.key("finding"_ns);
  json.string(stringWithFileSystemRepresentation(finding.what));
  json.key("advice"_ns);
  if (finding.advice.empty())
    json.null();
  else
    json.string(stringWithFileSystemRepresentation(finding.advice));
  json.endObject();
}

class DoctorCommand final : public Command {
 public:
  std::string_view name() const override { return "doctor"; }
  std::string_view summary() const override {
    return "Look whether everything that importing and searching need is there.";
  }
  std::string_view operands() const override { return ""; }
  std::string_view notes() const override {
    return "Exit codes: 0 nothing is broken, 1 something is a problem.";
  }
  void declareOptions(CLI::App& options) override {
    options.add_flag("--json", _isJSON, "Print one JSON array");
  }
  ExitCode run(std::vector<std::string> operands, Console& console) override;

 private:
  bool _isJSON = false;
};

ExitCode DoctorCommand::run(std::vector<std::string> operands, Console& console) {
  if (!operands.empty()) throw UsageError("doctor takes no " + operands.front());
  std::vector<Finding> findings;
  for (Examination examine : kExaminations) examine(findings);
  if (_isJSON) {
    JSONWriter json(console.output, JSONWriter::Layout::Indented);
    json.beginArray();
    for (const Finding& finding : findings) writeJSON(json, finding);
    json.endArray();
    console.output.write('\n');
  } else {
    for (const Finding& finding : findings) writeText(console.output, finding);
  }
  const bool isBroken = std::ranges::any_of(
      findings, [](const Finding& finding) { return finding.level == Finding::Level::Problem; });
  return isBroken ? kUndone : kDone;
}

}  // namespace

std::unique_ptr<Command> makeDoctorCommand() { return std::make_unique<DoctorCommand>(); }

}  // namespace kbx
