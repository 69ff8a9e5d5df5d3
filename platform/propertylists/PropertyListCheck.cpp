#include "platform/propertylists/PropertyListCheck.h"

#include <algorithm>
#include <vector>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSDate.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSNumber.h"
#include "platform/propertylists/PropertyListReading.h"
#include "platform/propertylists/PropertyListText.h"

namespace kbx {
namespace {

constexpr char kSurrogateFault[] = "holds a surrogate alone";
constexpr char kControlFault[] = "holds a character that XML does not allow";

bool isAllowedInXML(char16_t unit) {
  if (unit < 0x20) return unit == '\t' || unit == '\n' || unit == '\r';
  return unit < 0xFFFE;
}

bool isHigh(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isLow(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

/// Walks a tree and remembers the way to where it stands.
class Check {
 public:
  explicit Check(bool isXML) : _isXML(isXML) {}

  /// Whether nothing is wrong with the value.
  bool passes(NSObject* value);
  std::string fault() const { return _fault + place(); }

 private:
  /// One level: the key of a dictionary, or the index of an array where there is none.
  struct Step {
    NSString* key;
    std::size_t index;
  };

  bool fail(std::string_view what) {
    _fault = what;
    return false;
  }
  bool passesText(NSString* text, const char* what);
  bool passesArray(NSArray* array);
  bool passesDictionary(NSDictionary* dictionary);
  bool passesLeaf(NSObject* value);
  std::string place() const;

  const bool _isXML;
  std::vector<Step> _path;
  std::string _fault;
};

bool Check::passesText(NSString* text, const char* what) {
  const char* wrong = text->visitUnits([this](auto units) -> const char* {
    for (std::size_t i = 0; i < units.size(); ++i) {
      const auto unit = static_cast<char16_t>(units[i]);
      if (_isXML && !isAllowedInXML(unit)) return kControlFault;
      if constexpr (sizeof(units[0]) == 2) {
        if (isLow(unit) && (i == 0 || !isHigh(units[i - 1]))) return kSurrogateFault;
        if (isHigh(unit) && (i + 1 == units.size() || !isLow(units[i + 1]))) return kSurrogateFault;
      }
    }
    return nullptr;
  });
  return !wrong || fail(std::string(what) + wrong);
}

bool Check::passesArray(NSArray* array) {
  _path.push_back({nullptr, 0});
  for (const auto& element : *array) {
    if (!passes(element)) return false;
    ++_path.back().index;
  }
  _path.pop_back();
  return true;
}

bool Check::passesDictionary(NSDictionary* dictionary) {
  for (const auto& [key, value] : *dictionary) {
    auto* name = cast<NSString>(key);
    if (!name)
      return fail("a dictionary has a key of class " + key->objectClass()->name() +
                  ", where only strings may be,");
    if (!passesText(name, "a key ")) return false;
    _path.push_back({name, 0});
    if (!passes(value)) return false;
    _path.pop_back();
  }
  return true;
}

bool Check::passesLeaf(NSObject* value) {
  if (auto* text = cast<NSString>(value)) return passesText(text, "a string ");
  if (cast<NSNumber>(value) || cast<NSData>(value)) return true;
  auto* date = cast<NSDate>(value);
  if (!date) return fail("an object of class " + value->objectClass()->name() + " stands");
  return !_isXML || textFromDate(date->timeIntervalSinceReferenceDate()) ||
         fail("a date beyond the calendar stands");
}

bool Check::passes(NSObject* value) {
  auto* array = cast<NSArray>(value);
  auto* dictionary = cast<NSDictionary>(value);
  if ((array || dictionary) && _path.size() >= kDeepestPropertyList)
    return fail("more than " + std::to_string(kDeepestPropertyList) +
                " levels of containers stand");
  if (array) return passesArray(array);
  return dictionary ? passesDictionary(dictionary) : passesLeaf(value);
}

std::string Check::place() const {
  constexpr std::size_t kShown = 16;  // steps; a path of 512 says no more
  if (_path.empty()) return " at the top";
  std::string text;
  for (std::size_t i = 0; i < std::min(_path.size(), kShown); ++i) {
    const auto& [key, index] = _path[i];
    if (key && i > 0) text += '.';
    text += key ? key->lossyUTF8() : "[" + std::to_string(index) + "]";
  }
  return " at “" + text + (_path.size() > kShown ? "…”" : "”");
}

}  // namespace

std::optional<std::string> faultInPropertyList(NSObject* list, NSPropertyListFormat format) {
  Check check(format == NSPropertyListXMLFormat_v1_0);
  if (check.passes(list)) return std::nullopt;
  return check.fault();
}

}  // namespace kbx
