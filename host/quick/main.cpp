// ferncase: answers plain searches by itself, and becomes the host for everything else. Starting
// the host, with all that imports, takes longer than most searches.
#include <optional>
#include <span>
#include <string_view>

#include "host/console/StandardStreams.h"
#include "host/import/PrivateFiles.h"
#include "host/quick/Host.h"
#include "host/quick/QuickSearch.h"

namespace {

/// Absent where the host is needed.
std::optional<int> quickAnswer(std::span<const char* const> words) {
  if (words.size() < 2 || std::string_view(words[1]) != "search" || kbx::isForTerminal())
    return std::nullopt;
  const auto arguments = kbx::quickArguments(words.subspan(2));
  if (!arguments) return std::nullopt;
  kbx::DescriptorOutput output(kbx::kStandardOutput), complaints(kbx::kStandardError);
  return kbx::quickSearch(*arguments, output, complaints);
}

}  // namespace

int main(int argc, char** argv) {
  kbx::prepareStandardStreams();
  kbx::keepNewFilesPrivate();
  const auto code = quickAnswer({argv, argv + argc});
  return code ? *code : kbx::becomeHost(argv);
}
