#include "host/search/WordFields.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

#include "host/search/Spelling.h"

namespace kbx {
namespace {

using Kind = WordField::Kind;

constexpr WordField kFields[] = {
    {"from", Kind::Text, TextField::From},
    {"to", Kind::Text, TextField::To},
    {"cc", Kind::Text, TextField::Cc},
    {"bcc", Kind::Text, TextField::Bcc},
    {"subject", Kind::Text, TextField::Subject},
    {"body", Kind::Text, TextField::Body},
    {"attachment", Kind::Text, TextField::Attachment},
    {"file", Kind::Text, TextField::File},
    {"list", Kind::Text, TextField::List},
    {"before", Kind::Before},
    {"after", Kind::After},
    {"on", Kind::On},
    {"has", Kind::Has},
    {"is", Kind::Is},
};

struct Synonym {
  std::string_view name, field;
};

constexpr Synonym kSynonyms[] = {
    {"sender", "from"},  {"author", "from"},
    {"recipient", "to"}, {"title", "subject"},
    {"text", "body"},    {"content", "body"},
    {"message", "body"}, {"attached", "attachment"},
    {"name", "file"},    {"filename", "attachment"},
    {"path", "file"},    {"listid", "list"},
    {"until", "before"}, {"older", "before"},
    {"till", "before"},  {"since", "after"},
    {"newer", "after"},  {"date", "on"},
    {"day", "on"},       {"sent", "on"},
    {"received", "on"},  {"flag", "is"},
    {"tag", "is"},       {"status", "is"},
};

struct NamedFlag {
  std::string_view name;
  FlagTest test;
};

constexpr NamedFlag kStates[] = {
    {"unread", {Flag::Read, false}}, {"read", {Flag::Read}}, {"flagged", {Flag::Flagged}},
    {"replied", {Flag::Replied}},    {"junk", {Flag::Junk}},
};

struct OtherTerm {
  std::string_view value, term;
};

constexpr OtherTerm kOtherTerms[] = {
    {"unflagged", "-is:flagged"}, {"unreplied", "-is:replied"}, {"answered", "is:replied"},
    {"starred", "is:flagged"},    {"spam", "is:junk"},          {"seen", "is:read"},
    {"unseen", "is:unread"},      {"new", "is:unread"},         {"attachment", "has:attachment"},
};

bool isSameName(std::string_view a, std::string_view b) {
  constexpr auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return std::ranges::equal(a, b, {}, fold, fold);
}

template <class Entry>
std::vector<std::string_view> namesOf(const Entry& entries) {
  std::vector<std::string_view> names;
  for (const auto& entry : entries) names.push_back(entry.name);
  return names;
}

}  // namespace

const WordField* fieldNamed(std::string_view name) {
  const auto found = std::ranges::find_if(
      kFields, [&](const auto& field) { return isSameName(field.name, name); });
  return found == std::end(kFields) ? nullptr : found;
}

std::string_view nearestField(std::string_view name) {
  for (const auto& [other, field] : kSynonyms)
    if (isSameName(other, name)) return field;
  return nearestWord(name, namesOf(kFields));
}

std::optional<FlagTest> flagNamed(const WordField& field, std::string_view value) {
  if (field.kind == Kind::Has)
    return isSameName(value, "attachment") ? std::optional(FlagTest{Flag::Attachment})
                                           : std::nullopt;
  for (const auto& [name, test] : kStates)
    if (isSameName(name, value)) return test;
  return std::nullopt;
}

std::string nearestFlag(const WordField& field, std::string_view value) {
  if (field.kind == Kind::Has) {
    if (flagNamed({"is", Kind::Is}, value)) return "is:" + std::string(value);
    return "has:attachment";
  }
  for (const auto& [other, term] : kOtherTerms)
    if (isSameName(other, value)) return std::string(term);
  const auto nearest = nearestWord(value, namesOf(kStates));
  return nearest.empty() ? "" : "is:" + std::string(nearest);
}

std::string_view flagNames(const WordField& field) {
  return field.kind == Kind::Has ? "attachment" : "unread, read, flagged, replied, junk";
}

}  // namespace kbx
