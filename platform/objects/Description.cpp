#include "platform/objects/Description.h"

#include <string>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

constexpr unsigned kDeepest = 512;
constexpr std::size_t kLongest = std::size_t{1} << 24;
constexpr std::size_t kLongestQuoted = std::size_t{1} << 20;  // of what is no text itself
constexpr std::size_t kMostWork = std::size_t{1} << 26;
constexpr std::size_t kWorkOfLevel = 8;  // a collection of plain values gets to kLongest first

thread_local constinit unsigned openLevels = 0;
thread_local constinit unsigned openBudgets = 0;
thread_local constinit std::size_t spentUnits = 0;

bool isPlain(char16_t unit) {
  return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') ||
         (unit >= '0' && unit <= '9') || unit == '_' || unit == '$' || unit == '.' || unit == '/' ||
         unit == ':';
}

bool needsQuotes(NSString* text) {
  return text->visitUnits([](auto units) {
    for (auto unit : units)
      if (!isPlain(static_cast<char16_t>(unit))) return true;
    return units.empty();
  });
}

void appendQuoted(StringBuilder& text, NSString* value) {
  text.append("\"");
  std::size_t from = 0;
  value->visitUnits([&](auto units) {
    for (std::size_t i = 0; i < units.size(); ++i) {
      if (units[i] != '"' && units[i] != '\\' && units[i] != '\n') continue;
      text.append(*value, {from, i - from}).append("\\");
      if (units[i] == '\n') text.append("n");
      from = i + (units[i] == '\n');
    }
  });
  text.append(*value, {from, value->length() - from}).append("\"");
}

void appendValue(StringBuilder& text, NSObject* value) {
  Ref<NSString> description = descriptionOf(value);
  // Quoting what is quoted already doubles its backslashes, and so grows with every level.
  if (!cast<NSString>(value) && description->length() > kLongestQuoted)
    text.append("...");
  else if (needsQuotes(description))
    appendQuoted(text, description);
  else
    text.append(description);
}

void appendIndent(StringBuilder& text, unsigned indent) {
  text.append(std::string(std::size_t{4} * indent, ' '));
}

void appendArray(StringBuilder& text, NSArray* array, unsigned indent,
                 const DescriptionBudget& budget) {
  text.append("(");
  bool isFirst = true;
  for (const auto& element : *array) {
    text.append(isFirst ? "\n" : ",\n");
    appendIndent(text, indent + 1);
    if (endsHere(text, budget)) break;
    appendNested(text, element, indent + 1);
    isFirst = false;
  }
  text.append("\n");
  appendIndent(text, indent);
  text.append(")");
}

void appendDictionary(StringBuilder& text, NSDictionary* dictionary, unsigned indent,
                      const DescriptionBudget& budget) {
  text.append("{\n");
  for (const auto& [key, value] : *dictionary) {
    appendIndent(text, indent + 1);
    if (endsHere(text, budget)) break;
    appendNested(text, key, indent + 1);
    text.append(" = ");
    appendNested(text, value, indent + 1);
    text.append(";\n");
  }
  appendIndent(text, indent);
  text.append("}");
}

}  // namespace

DescriptionBudget::DescriptionBudget() noexcept : _isOutermost(openBudgets++ == 0) {
  if (_isOutermost) spentUnits = 0;
}
DescriptionBudget::~DescriptionBudget() { --openBudgets; }
void DescriptionBudget::spend(std::size_t units) const noexcept { spentUnits += units; }
bool DescriptionBudget::isSpent() const noexcept { return spentUnits > kMostWork; }

DescriptionLevel::DescriptionLevel() noexcept {
  ++openLevels;
  _budget.spend(kWorkOfLevel);
}
DescriptionLevel::~DescriptionLevel() { --openLevels; }
bool DescriptionLevel::isCut() const noexcept { return openLevels > kDeepest || _budget.isSpent(); }

bool endsHere(StringBuilder& text, const DescriptionBudget& budget) {
  if (text.length() < kLongest && !budget.isSpent()) return false;
  text.append("...");
  return true;
}

void appendNested(StringBuilder& text, NSObject* value, unsigned indent) {
  const DescriptionLevel level;
  if (level.isCut()) {
    text.append("...");
  } else if (auto* array = cast<NSArray>(value)) {
    appendArray(text, array, indent, level.budget());
  } else if (auto* dictionary = cast<NSDictionary>(value)) {
    appendDictionary(text, dictionary, indent, level.budget());
  } else {
    appendValue(text, value);
  }
}

Ref<NSString> descriptionOf(NSObject* object) {
  if (!object) return "(null)"_ns;
  if (auto* string = cast<NSString>(object)) return string;
  const DescriptionLevel level;
  if (level.isCut()) return "..."_ns;
  Ref<NSString> description = object->description();
  if (!description) return "(null)"_ns;
  if (level.budget().isOutermost()) return description;
  level.budget().spend(description->length());
  // Else each level that is open would copy it once more.
  return level.budget().isSpent() ? Ref<NSString>("..."_ns) : description;
}

}  // namespace kbx
