#include "host/import/ImportErrors.h"

#include <algorithm>
#include <optional>
#include <string>

#include "host/console/FerncaseErrors.h"

namespace kbx {
namespace {

// The importer logs "FerncaseSpotlightImporter error %@ for file %@". The error's text is
//
//   <NSError Domain=NSCocoaErrorDomain Code=260 UserInfo={
//       NSFilePath = "/a.eml",
//       NSLocalizedDescription = "The file “a.eml” couldn’t be opened.
//           A further line.",
//       NSUnderlyingError = "<NSError …>"
//       }>
//
// with each entry of the user info on a line that begins with exactly four blanks. Whatever is
// inside an entry begins with eight or more, so no text within an error can pass for one.
constexpr std::u16string_view kLoggedError = u"FerncaseSpotlightImporter error ";
constexpr std::u16string_view kLineOfEntry = u"\n    ";

// And the mail importer logs "Mail error: %@" with the description of its error.
constexpr std::u16string_view kMailError = u"Mail error: ";

std::u16string unitsOf(NSString* text) {
  return text->visitUnits([](auto units) { return std::u16string(units.begin(), units.end()); });
}

Ref<NSString> stringOf(std::u16string_view units) { return NSString::stringWithUTF16(units); }

/// Takes `start` off the text, or answers that it begins with something else.
bool skip(std::u16string_view& text, std::u16string_view start) {
  if (!text.starts_with(start)) return false;
  text.remove_prefix(start.size());
  return true;
}

/// What stands before `end`, which is taken off as well; absent without such an end.
std::optional<std::u16string_view> takeUntil(std::u16string_view& text, std::u16string_view end) {
  const std::size_t at = text.find(end);
  if (at == std::u16string_view::npos) return std::nullopt;
  auto taken = text.substr(0, at);
  text.remove_prefix(at + end.size());
  return taken;
}

/// Where the next entry begins, or the text ends.
std::size_t endOfEntry(std::u16string_view text) {
  std::size_t at = text.find(kLineOfEntry);
  while (at != text.npos && text.substr(at + kLineOfEntry.size()).starts_with(u' '))
    at = text.find(kLineOfEntry, at + 1);
  return std::min(at, text.size());
}

/// The text of a quoted value, its indentation taken back.
Ref<NSString> unquoted(std::u16string_view value) {
  if (value.ends_with(u',')) value.remove_suffix(1);
  if (!skip(value, u"\"") || !value.ends_with(u'"')) return nullptr;
  value.remove_suffix(1);
  Ref<NSString> text = stringOf(value);
  return text->stringByReplacingOccurrences("\n        "_ns, "\n"_ns);
}

/// The value of the entry "NSLocalizedDescription"; absent without one.
Ref<NSString> descriptionIn(std::u16string_view userInfo) {
  constexpr std::u16string_view kEntry = u"\n    NSLocalizedDescription = ";
  if (!takeUntil(userInfo, kEntry)) return nullptr;
  return unquoted(userInfo.substr(0, endOfEntry(userInfo)));
}

/// The error that a line tells of; absent for any other line.
Ref<NSError> loggedError(NSString* line) {
  const std::u16string units = unitsOf(line);
  std::u16string_view text = units;
  if (!skip(text, kLoggedError) || !skip(text, u"<NSError Domain=")) return nullptr;
  auto domain = takeUntil(text, u" Code=");
  auto code = takeUntil(text, u" UserInfo={");
  if (!domain || !code) return nullptr;
  auto info = NSMutableDictionary::dictionary();
  if (auto description = descriptionIn(text))
    info->setObjectForKey(description, NSLocalizedDescriptionKey());
  return NSError::errorWithDomain(stringOf(*domain), stringOf(*code)->integerValue(), info);
}

bool isMailError(NSString* line) { return line->hasPrefix(stringOf(kMailError)); }

/// What the mail importer says, without its name; absent when it has no complaint.
Ref<NSString> mailError(const ImportLog::Lines& lines) {
  const auto line = std::ranges::find_if(lines, [](const auto& each) { return isMailError(each); });
  return line == lines.end() ? nullptr : (*line)->substringFromIndex(kMailError.size());
}

bool tellsOfNoError(NSString* line) {
  return line->hasPrefix("FerncaseSpotlightImporter error (null) for file "_ns);
}

/// The last line that tells something; an absent error tells nothing.
NSString* mostTelling(const ImportLog::Lines& lines) {
  for (auto line = lines.rbegin(); line != lines.rend(); ++line)
    if ((*line)->rangeOfString("(null)"_ns).length == 0) return *line;
  return lines.back();
}

}  // namespace

Ref<NSError> importError(const ImportLog::Lines& lines, std::string_view mailImporterReason) {
  for (auto line = lines.rbegin(); line != lines.rend(); ++line)
    if (auto error = loggedError(*line)) return error;
  const bool isUnexplained =
      std::ranges::any_of(lines, [](const auto& line) { return tellsOfNoError(line); });
  if (isUnexplained && !mailImporterReason.empty())
    return ferncaseError(FerncaseImportFailedError, mailImporterReason);
  if (auto reason = mailError(lines)) return ferncaseError(FerncaseImportFailedError, reason);
  if (!lines.empty()) return ferncaseError(FerncaseImportFailedError, mostTelling(lines));
  return ferncaseError(FerncaseImportFailedError, "The importer gave no attributes.");
}

bool tellsOfMailError(const ImportLog::Lines& lines) { return mailError(lines) != nullptr; }

}  // namespace kbx
