#include "host/documents/ManualCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <fstream>
#include <optional>

#include "host/documents/ManualPage.h"
#include "platform/objects/NSError.h"

namespace kbx {
namespace {

class ManualCommand final : public Command {
 public:
  std::string_view name() const override { return "manual"; }
  std::string_view summary() const override { return "Print the manual page of a command."; }
  std::string_view operands() const override { return "[COMMAND]"; }
  std::string_view notes() const override {
    return "To read one: ferncase manual import | man -l -";
  }
  void declareOptions(CLI::App& options) override {
    options.add_option("--into", _folder, "Write all pages into a folder instead")
        ->type_name("DIR");
  }
  ExitCode run(std::vector<std::string> operands, Console& console) override;

 private:
  ExitCode writeAll(const std::vector<CommandOutline>& commands, Console& console) const;

  std::optional<std::string> _folder;
};

bool writeFile(const std::string& path, const std::string& text, Console& console) {
  std::ofstream file(path, std::ios::binary);
  file << text << std::flush;
  if (file) return true;
  console.diagnostics.failure(path, posixError(errno)->localizedFailureReason());
  return false;
}

ExitCode ManualCommand::writeAll(const std::vector<CommandOutline>& commands,
                                 Console& console) const {
  bool isWritten = writeFile(*_folder + "/ferncase.1", manualPage(commands), console);
  for (const CommandOutline& command : commands)
    isWritten =
        writeFile(*_folder + "/ferncase-" + command.name + ".1", manualPage(command), console) &&
        isWritten;
  return isWritten ? kDone : kBroken;
}

ExitCode ManualCommand::run(std::vector<std::string> operands, Console& console) {
  if (operands.size() > (_folder ? 0 : 1)) throw UsageError("manual takes no " + operands.back());
  const auto commands = allOutlines();
  if (_folder) return writeAll(commands, console);
  if (operands.empty()) {
    console.output.write(manualPage(commands));
    return kDone;
  }
  const auto command = std::ranges::find(commands, operands.front(), &CommandOutline::name);
  if (command == commands.end()) throw UsageError("there is no command " + operands.front());
  console.output.write(manualPage(*command));
  return kDone;
}

}  // namespace

std::unique_ptr<Command> makeManualCommand() { return std::make_unique<ManualCommand>(); }

}  // namespace kbx
