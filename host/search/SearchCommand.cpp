#include "host/search/SearchCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "host/console/Interruption.h"
#include "host/console/StandardStreams.h"
#include "host/console/Terminal.h"
#include "host/search/FoundWriter.h"
#include "host/search/LiveSearch.h"
#include "host/search/Search.h"
#include "host/store/StoreOption.h"
#include "platform/desktop/DesktopFolders.h"
#include "platform/text/ASCII.h"

namespace kbx {
namespace {

using Form = FoundSettings::Form;
using Order = SearchSettings::Order;

constexpr std::uint64_t kTerminalLimit = 100;  // what people still look at
constexpr int kPauseMilliseconds = 200;

struct Options {
  std::vector<std::string> folders;
  std::vector<std::string> names;
  StoreOption store;
  std::string order = "date";
  std::optional<std::uint64_t> limit;
  std::uint64_t offset = 0;
  bool isReversed = false;
  bool isCount = false;
  bool isNulSeparated = false;
  bool isJSON = false;
  bool isLines = false;
  bool hasSnippets = false;
  bool isLive = false;
};

/// The folder as the store may know it: as it was named, and where links in it lead.
void addFolder(std::vector<std::string>& folders, const std::string& name) {
  std::error_code failure;
  const auto absolute = std::filesystem::absolute(name, failure).lexically_normal();
  if (failure) return folders.push_back(name);
  folders.push_back(absolute.string());
  const auto real = std::filesystem::canonical(absolute, failure);
  if (!failure && real != absolute) folders.push_back(real.string());
}

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

class SearchCommand final : public Command {
 public:
  std::string_view name() const override { return "search"; }
  std::string_view summary() const override { return "Find messages that were indexed."; }
  std::string_view operands() const override { return "QUERY..."; }
  std::string_view notes() const override;
  bool isOperand(std::string_view word) const override;
  void declareOptions(CLI::App& options) override;
  ExitCode run(std::vector<std::string> operands, Console& console) override;

 private:
  void checkUsage(const std::vector<std::string>& operands) const;
  SearchSettings searchSettings() const;
  FoundSettings foundSettings() const;
  std::unique_ptr<StoreReader> openStore(Diagnostics& diagnostics) const;
  ExitCode searchStore(StoreReader& reader, const std::string& query, Console& console) const;
  ExitCode count(Search& search, Console& console) const;
  ExitCode list(Search& search, FoundWriter& writer, Console& console) const;
  ExitCode follow(LiveSearch& search, FoundWriter& writer, Console& console) const;

  Options _options;
  bool _isForTerminal = false;
};

std::string_view SearchCommand::notes() const {
  return "QUERY is words (all wanted), \"phrases\", begin*, -without, OR, ( ), and fields:\n"
         "  from: to: cc: bcc: subject: body: attachment: file: list:   words there\n"
         "  before: after: on:   2024, 2024-05, 2024-05-17, today, yesterday, lastweek, 3d, 2w, "
         "1m\n"
         "  is:unread is:read is:flagged is:replied is:junk has:attachment\n"
         "or comparisons: kMDItemSubject == \"plan*\"cd && kMDItemFSSize > 4096\n"
         "\n"
         "Exit codes: 0 found, 1 nothing found, 2 wrong query or usage, 5 no store to read.";
}

bool SearchCommand::isOperand(std::string_view word) const {
  return word.size() > 1 && word[0] == '-' && word[1] != '-' && word != "-0" && word != "-h";
}

/// Says what is wrong with the text of a number of messages; nothing when it is one. The library
/// takes "-1" for a large number.
std::string countFault(const std::string& text) {
  const bool isNumber = !text.empty() && std::ranges::all_of(text, isASCIIDigit);
  return isNumber ? std::string() : text + " is no number of messages";
}

void SearchCommand::declareOptions(CLI::App& options) {
  options.add_option("--onlyin", _options.folders, "Only messages in this folder; may be repeated")
      ->type_name("DIR")
      ->allow_extra_args(false);
  options.add_flag("--count", _options.isCount, "Print how many there are");
  options
      .add_option("--limit", _options.limit,
                  "Print so many at most, 0 for all; 100 on a terminal otherwise")
      ->type_name("N")
      ->check(countFault);
  options.add_option("--offset", _options.offset, "Leave out so many at the beginning")
      ->type_name("N")
      ->check(countFault);
  options
      .add_option("--sort", _options.order,
                  "date (the newest first, the default), rank (the best first) or path")
      ->type_name("KEY");
  options.add_flag("--reverse", _options.isReversed, "Sort the other way round");
  options.add_flag("-0", _options.isNulSeparated, "End each path in a NUL");
  options.add_flag("--json", _options.isJSON, "Print one JSON array");
  options.add_flag("--ndjson", _options.isLines, "Print one JSON object a line");
  options.add_option("--name", _options.names, "Print this attribute too; may be repeated")
      ->type_name("ATTRIBUTE")
      ->allow_extra_args(false);
  options.add_flag("--snippet", _options.hasSnippets, "Print the passage around what was found");
  options.add_flag("--live", _options.isLive, "Go on and print what comes in, until interrupted");
  _options.store.declareOn(options);
}

void SearchCommand::checkUsage(const std::vector<std::string>& operands) const {
  if (operands.empty()) throw UsageError("search needs a QUERY");
  if (_options.isJSON + _options.isLines + _options.isNulSeparated + _options.isCount > 1)
    throw UsageError("--json, --ndjson, -0 and --count exclude each other");
  if (_options.isLive && (_options.isJSON || _options.isCount))
    throw UsageError("--live excludes --json and --count");
  if (_options.isNulSeparated && (_options.hasSnippets || !_options.names.empty()))
    throw UsageError("-0 excludes --snippet and --name");
  if (_options.order != "date" && _options.order != "rank" && _options.order != "path")
    throw UsageError("--sort is date, rank or path");
  for (const std::string& folder : _options.folders)
    if (folder.empty()) throw UsageError("--onlyin needs a DIR");
}

SearchSettings SearchCommand::searchSettings() const {
  SearchSettings settings;
  for (const std::string& folder : _options.folders) addFolder(settings.folders, folder);
  settings.order = _options.order == "rank"   ? Order::Rank
                   : _options.order == "path" ? Order::Path
                                              : Order::Date;
  settings.isReversed = _options.isReversed;
  settings.offset = _options.offset;
  settings.limit = _options.limit;
  if (_options.limit == 0) settings.limit.reset();
  // One more than people are shown, to know whether there are more.
  const bool isPage = _isForTerminal && !_options.isCount && !_options.isLive;
  if (isPage && !_options.limit) settings.limit = kTerminalLimit + 1;
  return settings;
}

FoundSettings SearchCommand::foundSettings() const {
  FoundSettings settings{.names = _options.names, .hasSnippets = _options.hasSnippets};
  settings.hasColours = _isForTerminal && environmentVariable("NO_COLOR").value_or("").empty();
  settings.form = _options.isJSON           ? Form::JSON
                  : _options.isLines        ? Form::JSONLines
                  : _options.isNulSeparated ? Form::NulPaths
                  : !_options.names.empty() ? Form::Attributes
                  : _isForTerminal          ? Form::Lines
                                            : Form::Paths;
  return settings;
}

std::unique_ptr<StoreReader> SearchCommand::openStore(Diagnostics& diagnostics) const {
  Ref<NSError> error;
  auto reader = StoreReader::open(_options.store.path(), &error);
  if (!reader) diagnostics.failure(error);
  return reader;
}

/// error  absent where a message is not there any more
ExitCode unreadable(Diagnostics& diagnostics, NSError* error) {
  if (error)
    diagnostics.failure(error);
  else
    diagnostics.message("a message has gone from the store meanwhile");
  return kStoreFailed;
}

ExitCode SearchCommand::count(Search& search, Console& console) const {
  Ref<NSError> error;
  const auto count = search.count(&error);
  if (!count) return unreadable(console.diagnostics, error);
  console.output.write(std::to_string(*count) + "\n");
  return *count > 0 ? kDone : kUndone;
}

ExitCode SearchCommand::list(Search& search, FoundWriter& writer, Console& console) const {
  const auto most =
      _isForTerminal && !_options.limit ? std::optional(kTerminalLimit) : std::nullopt;
  std::uint64_t count = 0;
  bool isRead = true;
  Ref<NSError> error;
  const auto take = [&](std::int64_t id) {
    if (most && count == *most) {
      ++count;
      return false;
    }
    ++count;
    isRead = writer.found(search, id, &error);
    return isRead && console.output.failure() == 0;
  };
  writer.begin();
  const bool isDone = search.run(take, &error) && isRead;
  writer.end();
  if (most && count > *most && console.output.flush())
    console.diagnostics.message("there are more; --limit 0 prints all");
  if (!isDone) return unreadable(console.diagnostics, error);
  return count > 0 ? kDone : kUndone;
}

ExitCode SearchCommand::follow(LiveSearch& search, FoundWriter& writer, Console& console) const {
  const Interruption noted;
  bool hasFound = false;
  Ref<NSError> error;
  const auto take = [&](Search& run, std::int64_t id) {
    hasFound = true;
    return writer.found(run, id, &error) && console.output.failure() == 0;
  };
  while (!Interruption::isWished()) {
    const bool isDone = search.update(take, &error);
    if (!console.output.flush()) return kBroken;
    if (!isDone) return unreadable(console.diagnostics, error);
    if (!waitForReader(kPauseMilliseconds)) break;
  }
  return hasFound ? kDone : kUndone;
}

ExitCode SearchCommand::searchStore(StoreReader& reader, const std::string& query,
                                    Console& console) const {
  const auto writer = makeFoundWriter(console.output, reader, foundSettings());
  if (_options.isLive) {
    LiveSearch search(reader, query, searchSettings());
    return follow(search, *writer, console);
  }
  Search search(reader, parseQuery(query), searchSettings());
  return _options.isCount ? count(search, console) : list(search, *writer, console);
}

ExitCode SearchCommand::run(std::vector<std::string> operands, Console& console) {
  checkUsage(operands);
  const std::string query = joined(operands);
  _isForTerminal = !_options.isJSON && !_options.isLines && !_options.isNulSeparated &&
                   terminalColumns(kStandardOutput) > 0;
  try {
    parseQuery(query);  // what is wrong with it is told before what is wrong with the store
    const auto reader = openStore(console.diagnostics);
    return reader ? searchStore(*reader, query, console) : kStoreFailed;
  } catch (const QueryFault& fault) {
    console.diagnostics.text(faultText(query, fault));
    return kMisused;
  }
}

}  // namespace

std::unique_ptr<Command> makeSearchCommand() { return std::make_unique<SearchCommand>(); }

}  // namespace kbx
