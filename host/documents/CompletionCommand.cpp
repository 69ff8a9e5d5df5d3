#include "host/documents/CompletionCommand.h"

#include "host/documents/Completions.h"

namespace kbx {
namespace {

struct Shell {
  std::string_view name;
  std::string (*script)(std::span<const CommandOutline> commands);
};

constexpr Shell kShells[] = {
    {"bash", bashCompletion}, {"fish", fishCompletion}, {"zsh", zshCompletion}};

class CompletionCommand final : public Command {
 public:
  std::string_view name() const override { return "completion"; }
  std::string_view summary() const override {
    return "Print what a shell needs to complete command lines.";
  }
  std::string_view operands() const override { return "bash|fish|zsh"; }
  std::string_view notes() const override {
    return "For a running shell:\n"
           "  source <(ferncase completion bash)\n"
           "  source <(ferncase completion zsh)\n"
           "  ferncase completion fish | source";
  }
  void declareOptions(CLI::App&) override {}
  ExitCode run(std::vector<std::string> operands, Console& console) override {
    if (operands.size() != 1) throw UsageError("completion needs one of bash, fish and zsh");
    for (const Shell& shell : kShells) {
      if (operands.front() != shell.name) continue;
      console.output.write(shell.script(allOutlines()));
      return kDone;
    }
    throw UsageError("completion knows bash, fish and zsh, not " + operands.front());
  }
};

}  // namespace

std::unique_ptr<Command> makeCompletionCommand() { return std::make_unique<CompletionCommand>(); }

}  // namespace kbx
