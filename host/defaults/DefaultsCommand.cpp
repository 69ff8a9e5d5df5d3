#include "host/defaults/DefaultsCommand.h"

#include <CLI/CLI.hpp>
#include <optional>

#include "host/defaults/DefaultsRequest.h"
#include "host/defaults/ValueText.h"
#include "host/import/ImportLog.h"
#include "host/results/JSONWriter.h"
#include "platform/objects/NSNull.h"
#include "platform/preferences/Preferences.h"
#include "platform/preferences/PreferencesFolder.h"

namespace kbx {
namespace {

class DefaultsCommand final : public Command {
 public:
  std::string_view name() const override { return "defaults"; }
  std::string_view summary() const override { return "Read, write or delete the user's defaults."; }
  std::string_view operands() const override { return "read|write|delete [DOMAIN] KEY [VALUE]"; }
  std::string_view notes() const override;
  bool readsDashedWords() const override { return true; }
  void declareOptions(CLI::App& options) override;
  ExitCode run(std::vector<std::string> operands, Console& console) override;

 private:
  ExitCode read(const DefaultsRequest& request, Console& console) const;
  static ExitCode write(const DefaultsRequest& request, Console& console);
  static ExitCode remove(const DefaultsRequest& request, Console& console);

  std::optional<std::string> _domain;
  bool _isJSON = false;
};

std::string_view DefaultsCommand::notes() const {
  return "  read                      everything in the program's own domain, \"ferncase\"\n"
         "  read DOMAIN               everything in another domain\n"
         "  read [DOMAIN] KEY         one value\n"
         "  write [DOMAIN] KEY VALUE  sets a value, leaves the others as they are\n"
         "  delete [DOMAIN] KEY       removes a value\n"
         "  delete DOMAIN             removes a domain\n"
         "\n"
         "A word alone is a DOMAIN when it holds a dot or is ferncase, NSGlobalDomain or -g, else\n"
         "a KEY. With --domain every word is a KEY or a VALUE. -- ends the options.\n"
         "\n"
         "VALUE is a text, true, false, a number, a date such as 2026-11-21T03:56:00Z, <0fbd77>,\n"
         "(a, b), {key = value;} or an XML property list; or it has a type in front:\n"
         "  -string TEXT   -int N   -float N   -bool true|false   -date DATE   -data HEX\n"
         "  -array VALUE...         -dict KEY VALUE ...\n"
         "\n"
         "Examples:\n"
         "  ferncase defaults write KBXHTMLConverterDataLog true    switch a log area on\n"
         "  ferncase defaults write KBXLoggerPrefix -string 42\n"
         "  ferncase defaults read org.example.host --json\n"
         "  ferncase defaults delete KBXHTMLConverterDataLog\n"
         "\n"
         "Exit codes: 0 done, 1 there is no such key or domain, or it cannot be stored, 2 wrong\n"
         "usage.";
}

void DefaultsCommand::declareOptions(CLI::App& options) {
  options.add_option("--domain", _domain, "The domain, which no other word names then")
      ->type_name("DOMAIN");
  options.add_flag("--json", _isJSON, "Print what is read as JSON");
}

std::string shown(NSString* name) { return name->lossyUTF8(); }

ExitCode complainThatNoneIsThere(const DefaultsRequest& request, bool hasDomain, Console& console) {
  const std::string domain = "domain " + shown(request.domain);
  console.diagnostics.message(hasDomain ? "there is no " + shown(request.key) + " in the " + domain
                                        : "there is no " + domain);
  return kUndone;
}

/// What failed is in the log, which is shown, but for this one.
ExitCode finishStoring(bool isStored, const DefaultsRequest& request, Console& console) {
  if (isStored) return kDone;
  console.diagnostics.message("the domain " + shown(request.domain) + " cannot be stored" +
                              (preferencesFolder() ? ""
                                                   : ": neither XDG_CONFIG_HOME nor HOME "
                                                     "names a folder"));
  return kUndone;
}

ExitCode DefaultsCommand::read(const DefaultsRequest& request, Console& console) const {
  auto domain = Preferences::current().domain(request.domain);
  NSObject* value = domain && request.key ? domain->objectForKey(request.key) : domain.get();
  if (!value) return complainThatNoneIsThere(request, domain != nullptr, console);
  if (_isJSON)
    JSONWriter(console.output, JSONWriter::Layout::Indented).value(value);
  else
    writeValueText(console.output, value);
  console.output.write('\n');
  return kDone;
}

ExitCode DefaultsCommand::write(const DefaultsRequest& request, Console& console) {
  auto change = NSDictionary::dictionaryWithPairs({{request.key, request.value}});
  return finishStoring(Preferences::current().change(request.domain, change), request, console);
}

ExitCode DefaultsCommand::remove(const DefaultsRequest& request, Console& console) {
  auto& preferences = Preferences::current();
  auto domain = preferences.domain(request.domain);
  if (!domain || (request.key && !domain->objectForKey(request.key)))
    return complainThatNoneIsThere(request, domain != nullptr, console);
  if (!request.key)
    return finishStoring(preferences.replace(request.domain, nullptr), request, console);
  auto change = NSDictionary::dictionaryWithPairs({{request.key, NSNull::null()}});
  return finishStoring(preferences.change(request.domain, change), request, console);
}

ExitCode DefaultsCommand::run(std::vector<std::string> operands, Console& console) {
  const auto request = defaultsRequest(std::move(operands), _domain);
  if (_isJSON && request.action != DefaultsRequest::Action::Read)
    throw UsageError("--json belongs to read");
  ImportLog log(&console.diagnostics);  // troubles with files
  const ScopedService<ClassicLog> installed(log);
  switch (request.action) {
    case DefaultsRequest::Action::Read:
      return read(request, console);
    case DefaultsRequest::Action::Write:
      return write(request, console);
    default:
      return remove(request, console);
  }
}

}  // namespace

std::unique_ptr<Command> makeDefaultsCommand() { return std::make_unique<DefaultsCommand>(); }

}  // namespace kbx
