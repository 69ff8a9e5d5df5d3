#include "host/defaults/DefaultsRequest.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "host/console/Command.h"
#include "host/defaults/TypedValue.h"
#include "platform/preferences/Preferences.h"

namespace kbx {
namespace {

using Action = DefaultsRequest::Action;
using Words = std::span<const std::string>;

Action actionOf(const std::string& word) {
  if (word == "read") return Action::Read;
  if (word == "write") return Action::Write;
  if (word == "delete") return Action::Delete;
  throw UsageError("defaults cannot " + word + ": it can read, write and delete");
}

bool isGlobalFlag(const std::string& word) {
  return word == "-g" || word == "-globalDomain" || word == "-globaldomain";
}

Ref<NSString> textOf(const std::string& word, const char* what) {
  auto text = NSString::stringWithUTF8(word);
  if (!text) throw UsageError(std::string(what) + " is not UTF-8: " + word);
  if (text->length() == 0) throw UsageError(std::string(what) + " is empty");
  return text;
}

Ref<NSString> domainOf(const std::string& word) {
  if (isGlobalFlag(word)) return NSGlobalDomain();
  auto name = textOf(word, "the DOMAIN");
  if (isEqual(name, NSArgumentDomain()) || isEqual(name, NSRegistrationDomain()))
    throw UsageError("the domain " + word + " is in no file");
  return name;
}

Ref<NSString> keyOf(const std::string& word) { return textOf(word, "the KEY"); }

/// A dash begins an option that nobody knows.
void checkNames(Words names) {
  for (const auto& name : names)
    if (name.starts_with('-') && !isGlobalFlag(name)) throw UsageError("unknown option " + name);
}

/// Takes the word for the domain from the front, if there is one.
///
/// keys  how many words must be left for the key
Ref<NSString> takeDomain(Words& names, std::size_t keys, const std::optional<std::string>& option) {
  if (option) return domainOf(*option);
  const bool isNamed = names.size() > 1 || (keys == 0 && !names.empty() && isDomainName(names[0]));
  if (!isNamed) return applicationDomainName();
  auto domain = domainOf(names[0]);
  names = names.subspan(1);
  return domain;
}

/// How many words name the domain and the key; the rest is the value.
std::size_t countOfNames(Words words, bool hasDomain) {
  const std::size_t most = hasDomain ? 1 : 2;
  const Words front = words.first(std::min(words.size(), most + 1));
  const auto type = std::ranges::find_if(front, isValueType);
  if (type != front.end()) return static_cast<std::size_t>(type - front.begin());
  return words.size() > most ? most : 1;  // KEY VALUE, or DOMAIN KEY VALUE
}

DefaultsRequest writeRequest(Words words, const std::optional<std::string>& option) {
  const std::size_t count = std::min(countOfNames(words, option.has_value()), words.size());
  Words names = words.first(count);
  if (names.empty()) throw UsageError("defaults write needs a KEY and a VALUE");
  checkNames(names);
  DefaultsRequest request{Action::Write, takeDomain(names, 1, option), nullptr, nullptr};
  request.key = keyOf(names[0]);
  request.value = typedValue(words.subspan(count));
  return request;
}

DefaultsRequest otherRequest(Action action, Words names, const std::optional<std::string>& option) {
  checkNames(names);
  if (action == Action::Delete && names.empty() && !option)
    throw UsageError("defaults delete needs a KEY or a DOMAIN");
  DefaultsRequest request{action, takeDomain(names, 0, option), nullptr, nullptr};
  if (names.size() > 1) throw UsageError("a word too many: " + names[1]);
  if (!names.empty()) request.key = keyOf(names[0]);
  return request;
}

}  // namespace

DefaultsRequest defaultsRequest(std::vector<std::string> words,
                                const std::optional<std::string>& domain) {
  if (words.empty()) throw UsageError("defaults needs one of read, write and delete");
  const Action action = actionOf(words[0]);
  const Words rest = Words(words).subspan(1);
  return action == Action::Write ? writeRequest(rest, domain) : otherRequest(action, rest, domain);
}

bool isDomainName(const std::string& word) {
  return word.find('.') != word.npos || word == applicationDomainName()->lossyUTF8() ||
         word == NSGlobalDomain()->lossyUTF8() || isGlobalFlag(word);
}

}  // namespace kbx
