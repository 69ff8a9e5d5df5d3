#include "mail/MessageState.h"

#include "mail/ASCII.h"
#include "platform/objects/NSNumber.h"

namespace kbx {
namespace {

constexpr unsigned kRead = 0, kAnswered = 2, kFlagged = 4, kPriority = 16, kJunk = 24, kNoJunk = 25;

std::optional<std::uint64_t> flagsOf(NSDictionary* properties) {
  NSObject* flags = properties->objectForKey("flags"_ns);
  if (auto* number = cast<NSNumber>(flags)) return number->unsignedIntegerValue();
  auto* text = cast<NSString>(flags);
  if (!text || text->length() == 0 || !isASCIIDigit(static_cast<char>(text->characterAtIndex(0))))
    return std::nullopt;
  return static_cast<std::uint64_t>(text->integerValue());
}

bool bit(std::uint64_t flags, unsigned place) { return flags >> place & 1; }

std::optional<std::int64_t> importance(std::string_view word) {
  if (startsWithWord(word, "high") || startsWithWord(word, "urgent")) return 1;
  if (startsWithWord(word, "normal") || startsWithWord(word, "medium")) return 3;
  if (startsWithWord(word, "low") || startsWithWord(word, "non-urgent")) return 5;
  return std::nullopt;
}

/// "2 (High)" and "High" both occur.
std::optional<std::int64_t> priorityOf(const HeaderFields& header) {
  const std::string_view numbered = trimmed(header[HeaderField::XPriority]);
  if (!numbered.empty() && numbered[0] >= '1' && numbered[0] <= '5') return numbered[0] - '0';
  for (HeaderField field : {HeaderField::XPriority, HeaderField::MSMailPriority,
                            HeaderField::Importance, HeaderField::Priority})
    if (const auto priority = importance(trimmed(header[field]))) return priority;
  return std::nullopt;
}

std::optional<bool> junkOf(const HeaderFields& header) {
  for (HeaderField field : {HeaderField::SpamFlag, HeaderField::SpamStatus}) {
    const std::string_view value = trimmed(header[field]);
    if (startsWithWord(value, "yes")) return true;
    if (startsWithWord(value, "no")) return false;
  }
  return std::nullopt;
}

}  // namespace

MessageState messageState(NSDictionary* properties, const HeaderFields& header) {
  MessageState state;
  state.priority = priorityOf(header);
  state.isLikelyJunk = junkOf(header);
  const auto flags = flagsOf(properties);
  if (!flags) return state;
  state.isRead = bit(*flags, kRead);
  state.isRepliedTo = bit(*flags, kAnswered);
  state.isFlagged = bit(*flags, kFlagged);
  if (bit(*flags, kJunk) || bit(*flags, kNoJunk)) state.isLikelyJunk = bit(*flags, kJunk);
  const auto level = static_cast<std::int64_t>(*flags >> kPriority & 0x7F);
  if (!state.priority && level >= 1 && level <= 5) state.priority = level;
  return state;
}

}  // namespace kbx
