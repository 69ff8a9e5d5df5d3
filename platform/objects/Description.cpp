#include "platform/objects/Description.h"

#include <string>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

constexpr unsigned kDeepest = 512;

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
  value->visitUnits([&](auto units) {
    for (auto unit : units) {
      if (unit == '"' || unit == '\\') text.appendUnit('\\');
      if (unit == '\n')
        text.append("\\n");
      else
        text.appendUnit(static_cast<char16_t>(unit));
    }
  });
  text.append("\"");
}

void appendIndent(StringBuilder& text, unsigned level) {
  text.append(std::string(std::size_t{4} * level, ' '));
}

void appendArray(StringBuilder& text, NSArray* array, unsigned level) {
  text.append("(");
  bool isFirst = true;
  for (const auto& element : *array) {
    text.append(isFirst ? "\n" : ",\n");
    appendIndent(text, level + 1);
    appendNested(text, element, level + 1);
    isFirst = false;
  }
  text.append("\n");
  appendIndent(text, level);
  text.append(")");
}

void appendDictionary(StringBuilder& text, NSDictionary* dictionary, unsigned level) {
  text.append("{\n");
  for (const auto& [key, value] : *dictionary) {
    appendIndent(text, level + 1);
    appendNested(text, key, level + 1);
    text.append(" = ");
    appendNested(text, value, level + 1);
    text.append(";\n");
  }
  appendIndent(text, level);
  text.append("}");
}

}  // namespace

void appendNested(StringBuilder& text, NSObject* value, unsigned level) {
  auto* array = cast<NSArray>(value);
  auto* dictionary = cast<NSDictionary>(value);
  if ((array || dictionary) && level > kDeepest) {
    text.append("...");
  } else if (array) {
    appendArray(text, array, level);
  } else if (dictionary) {
    appendDictionary(text, dictionary, level);
  } else {
    Ref<NSString> description = descriptionOf(value);
    if (needsQuotes(description))
      appendQuoted(text, description);
    else
      text.append(description);
  }
}

}  // namespace kbx
