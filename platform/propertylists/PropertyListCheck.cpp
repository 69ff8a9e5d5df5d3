#include "platform/propertylists/PropertyListCheck.h"

#include <algorithm>
#include <cstdint>
#include <span>
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

/// Whether ASCII text holds a character that XML does not allow. Without a branch, so that the
/// compiler looks at many in one step.
bool holdsControl(std::span<const char> units) {
  std::uint8_t found = 0;
  for (char c : units) {
    const std::uint8_t isControl = c < 0x20 ? 1 : 0, isTab = c == '\t' ? 1 : 0;
    const std::uint8_t isFeed = c == '\n' ? 1 : 0, isReturn = c == '\r' ? 1 : 0;
    found |= static_cast<std::uint8_t>(isControl ^ isTab ^ isFeed ^ isReturn);
  }
  return found;
}

/// False for most texts: a closer look is needed at control characters and surrogates.
bool mayBeWrong(std::span<const char16_t> units) {
  std::uint16_t found = 0;
  for (char16_t unit : units) {
    const std::uint16_t isControl = unit < 0x20 ? 1 : 0, isLarge = unit >= 0xD800 ? 1 : 0;
    found |= static_cast<std::uint16_t>(isControl | isLarge);
  }
  return found;
}

bool isHigh(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isLow(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

const char* faultIn(std::span<const char> units, bool isXML) {
  return isXML && holdsControl(units) ? kControlFault : nullptr;
}

const char* faultIn(std::span<const char16_t> units, bool isXML) {
  if (!mayBeWrong(units)) return nullptr;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t unit = units[i];
    if (isXML && !isAllowedInXML(unit)) return kControlFault;
    if (isLow(unit) && (i == 0 || !isHigh(units[i - 1]))) return kSurrogateFault;
    if (isHigh(unit) && (i + 1 == units.size() || !isLow(units[i + 1]))) return kSurrogateFault;
  }
  return nullptr;
}

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
  const char* fault = text->visitUnits([this](auto units) { return faultIn(units, _isXML); });
  return !fault || fail(std::string(what) + fault);
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
  if (cast<NSNumber>(value) || cast<NSData>(value)) return true;
  auto* date = cast<NSDate>(value);
  if (!date) return fail("an object of class " + value->objectClass()->name() + " stands");
  return !_isXML || textFromDate(date->timeIntervalSinceReferenceDate()) ||
         fail("a date beyond the calendar stands");
}

bool Check::passes(NSObject* value) {
  if (auto* text = cast<NSString>(value)) return passesText(text, "a string ");
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
    if (key)
      text += key->lossyUTF8();
    else
      text.append("[").append(std::to_string(index)).append("]");
  }
  return std::string(" at “").append(text).append(_path.size() > kShown ? "…”" : "”");
}

}  // namespace

std::optional<std::string> faultInPropertyList(NSObject* list, NSPropertyListFormat format) {
  Check check(format == NSPropertyListXMLFormat_v1_0);
  if (check.passes(list)) return std::nullopt;
  return check.fault();
}

}  // namespace kbx
