#include "host/console/HiddenOperands.h"

#include <CLI/CLI.hpp>
#include <utility>

#include "host/console/Command.h"

namespace kbx {
namespace {

// A word that begins so by itself is hidden too, and so cannot be taken for a sign.
constexpr char kSign = '\x01';

}  // namespace

HiddenOperands::HiddenOperands(const Command& command, const CLI::App& options,
                               std::vector<std::string>& arguments) {
  bool isValue = false, isBehindMark = false;
  for (std::string& word : arguments) {
    isBehindMark = isBehindMark || (!isValue && word == "--");
    const bool isOperand = !isBehindMark && !isValue && command.isOperand(word);
    const CLI::Option* option = isValue ? nullptr : options.get_option_no_throw(word);
    const bool isSign = !isValue && word.starts_with(kSign);
    isValue = option && option->get_items_expected_min() > 0;
    if (!isOperand && !isSign) continue;
    _words.push_back(std::exchange(word, kSign + std::to_string(_words.size())));
  }
}

void HiddenOperands::restore(std::vector<std::string>& operands) const {
  for (std::string& word : operands)
    if (word.starts_with(kSign)) word = _words.at(std::stoul(word.substr(1)));
}

}  // namespace kbx
