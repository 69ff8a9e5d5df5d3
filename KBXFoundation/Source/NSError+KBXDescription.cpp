#include "NSError+KBXDescription.h"

#include <algorithm>
#include <string>
#include <vector>

#include "platform/logging/NSLog.h"
#include "platform/objects/Description.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/preferences/NSUserDefaults.h"
#include "platform/text/Format.h"
#include "platform/text/StringBuilder.h"

namespace kbx {
namespace {

constexpr unsigned kDeepest = 100;
constexpr std::size_t kLongest = 16'000'000;
constexpr std::size_t kWorkOfError = 1024;  // in the units of a description's budget
constexpr std::size_t kWorkOfEntry = 16;

void logShortly(NSError* error) {
  if (NSUserDefaults::standardUserDefaults()->boolForKey("ErrorShortLogging"_ns))
    NSLog("Error: %@"_ns, error);
}

void setIfMissing(NSMutableDictionary* info, NSObject* value, NSString* key) {
  if (value && !info->objectForKey(key)) info->setObjectForKey(value, key);
}

/// The user info and what the platform knows beyond it.
Ref<NSMutableDictionary> completeUserInfo(NSError* error) {
  Ref<NSMutableDictionary> info = error->userInfo()->mutableCopy();
  setIfMissing(info, error->localizedDescription(), NSLocalizedDescriptionKey());
  setIfMissing(info, error->localizedFailureReason(), NSLocalizedFailureReasonErrorKey());
  setIfMissing(info, error->localizedRecoverySuggestion(), NSLocalizedRecoverySuggestionErrorKey());
  return info;
}

NSError* underlyingError(NSError* error) {
  NSObject* value = error->userInfo()->objectForKey(NSUnderlyingErrorKey());
  if (value && !cast<NSError>(value)) raiseUnrecognizedSelector(value, "kbxFullDescription");
  return cast<NSError>(value);
}

struct Entry {
  Ref<NSString> key;
  Ref<NSObject> value;
};

/// The entries by the text of their keys, which need not be strings.
std::vector<Entry> sortedEntries(NSDictionary* dictionary) {
  std::vector<Entry> entries;
  for (const auto& [key, value] : *dictionary) entries.push_back({descriptionOf(key), value});
  std::ranges::stable_sort(entries, [](const Entry& a, const Entry& b) {
    return a.key->compare(b.key) == NSOrderedAscending;
  });
  return entries;
}

/// Writes values with every line break indented by the level it is on: a value's own lines stand
/// one level deeper than those of the value around it, closing brackets included.
class Writer {
 public:
  /// The error as it stands in a text of the level.
  Ref<NSString> describe(NSError* error, unsigned level);

 private:
  void appendError(StringBuilder& out, NSError* error, unsigned level);
  void appendValue(StringBuilder& out, NSObject* value, unsigned level);
  void appendOther(StringBuilder& out, NSObject* value, unsigned level);
  void appendArray(StringBuilder& out, NSArray* array, unsigned level);
  void appendDictionary(StringBuilder& out, NSDictionary* dictionary, unsigned level,
                        NSString* cause = nullptr);
  void appendCause(StringBuilder& out, NSString* cause);
  void appendText(StringBuilder& out, NSString* text, unsigned level);
  void appendBreak(StringBuilder& out, unsigned level);

  /// Whether enough is written, or what was not written has taken too much work: a small list may
  /// hold another again and again.
  bool isFull() const { return _length > kLongest || _budget.isSpent(); }

  /// Calls write(), or writes "..." where that would go too deep, because a list may hold itself,
  /// or where enough is written.
  template <class Write>
  void nest(StringBuilder& out, Write write) {
    if (_depth >= kDeepest || isFull()) {
      out.append("...");
      return;
    }
    ++_depth;
    write();
    --_depth;
  }

  /// Writes the items between brackets, each on a line of its own.
  template <class Items, class Write>
  void appendList(StringBuilder& out, const char* brackets, const Items& items, unsigned level,
                  Write write);

  const DescriptionBudget _budget;
  unsigned _depth = 0;
  std::size_t _length = 0;
};

Ref<NSString> Writer::describe(NSError* error, unsigned level) {
  StringBuilder out;
  appendError(out, error, level);
  return out.take();
}

void Writer::appendError(StringBuilder& out, NSError* error, unsigned level) {
  nest(out, [&] {
    _budget.spend(kWorkOfError);
    logShortly(error);
    // The error behind it comes first, as it does in the log. It is a string in the dictionary.
    NSError* underlying = underlyingError(error);
    const std::size_t lengthBefore = _length;
    Ref<NSString> cause = underlying ? describe(underlying, level + 2) : nullptr;
    _length = lengthBefore;  // the cause counts where it stands
    appendText(out,
               stringWithFormat("<NSError Domain=%@ Code=%ld UserInfo="_ns, error->domain(),
                                error->code()),
               level);
    appendDictionary(out, completeUserInfo(error), level + 1, cause);
    out.append(">");
  });
}

/// `level` is that of the text around the value.
void Writer::appendValue(StringBuilder& out, NSObject* value, unsigned level) {
  static const SEL isKindOfClass("isKindOfClass:");
  if (!value->respondsToSelector(isKindOfClass))
    appendText(out, descriptionOf(value), level);
  else if (auto* error = cast<NSError>(value))
    appendError(out, error, level);
  else
    appendOther(out, value, level + 1);
}

void Writer::appendOther(StringBuilder& out, NSObject* value, unsigned level) {
  if (auto* string = cast<NSString>(value)) {
    // Quotes inside stay as they are.
    appendText(out, stringWithFormat("\"%@\""_ns, string), level);
  } else if (auto* array = cast<NSArray>(value)) {
    nest(out, [&] { appendArray(out, array, level); });
  } else if (auto* dictionary = cast<NSDictionary>(value)) {
    nest(out, [&] { appendDictionary(out, dictionary, level); });
  } else {
    // Some descriptions write a line break as a backslash and an n.
    appendText(out, descriptionOf(value)->stringByReplacingOccurrences("\\n"_ns, "\n"_ns), level);
  }
}

template <class Items, class Write>
void Writer::appendList(StringBuilder& out, const char* brackets, const Items& items,
                        unsigned level, Write write) {
  out.append({brackets, 1});
  appendBreak(out, level);
  bool isFirst = true;
  for (const auto& item : items) {
    if (!isFirst) {
      out.append(",");
      appendBreak(out, level);
    }
    if (isFull()) {
      out.append("...");
      break;
    }
    write(item);
    isFirst = false;
  }
  appendBreak(out, level);
  out.append({brackets + 1, 1});
}

void Writer::appendArray(StringBuilder& out, NSArray* array, unsigned level) {
  appendList(out, "()", *array, level, [&](auto& element) { appendValue(out, element, level); });
}

/// `cause` is the text of the error behind it, indented already; it stands for the entry's value.
void Writer::appendDictionary(StringBuilder& out, NSDictionary* dictionary, unsigned level,
                              NSString* cause) {
  _budget.spend(kWorkOfEntry * dictionary->count());  // sorting takes all of them
  appendList(out, "{}", sortedEntries(dictionary), level, [&](const Entry& entry) {
    appendText(out, entry.key, level);
    out.append(" = ");
    if (cause && isEqual(entry.key, NSUnderlyingErrorKey()))
      appendCause(out, cause);
    else
      appendValue(out, entry.value, level);
  });
}

void Writer::appendCause(StringBuilder& out, NSString* cause) {
  _length += cause->length();
  _budget.spend(cause->length());
  // Else each of the errors around it would copy it once more.
  out.append("\"").append(_budget.isSpent() ? "..."_ns : cause).append("\"");
}

void Writer::appendText(StringBuilder& out, NSString* text, unsigned level) {
  _length += text->length();
  bool isFirst = true;
  const Ref<NSArray> lines = text->componentsSeparatedByString("\n"_ns);
  for (const auto& line : *lines) {
    if (!isFirst) appendBreak(out, level);
    out.append(cast<NSString>(line));
    isFirst = false;
  }
}

void Writer::appendBreak(StringBuilder& out, unsigned level) {
  const std::string blanks(std::size_t{4} * level, ' ');
  out.append("\n").append(blanks);
  _length += 1 + blanks.size();
}

}  // namespace

Ref<NSString> kbxFullDescription(NSError* error) {
  return error ? Writer().describe(error, 0) : nullptr;
}

}  // namespace kbx
