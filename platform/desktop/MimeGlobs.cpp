#include "platform/desktop/MimeGlobs.h"

#include <algorithm>
#include <charconv>
#include <tuple>

#include "platform/desktop/TextLines.h"
#include "platform/text/ASCII.h"

namespace kbx {
namespace {

constexpr std::string_view kWildcards = "*?[";
constexpr std::size_t kLongestName = 255;    // of a file, so patterns need not be longer
constexpr std::size_t kMostPatterns = 4096;  // that have to be tried one by one

std::string lowercase(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), asciiLower);
  return result;
}

/// Cuts the part before the next colon off the text.
std::string_view nextField(std::string_view& text) {
  const std::size_t end = std::min(text.find(':'), text.size());
  const std::string_view field = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return field;
}

/// One element of a pattern: matches a byte, and says where the next element begins.
struct Element {
  bool fits;
  std::size_t next;
};

Element setElement(std::string_view pattern, std::size_t at, std::size_t close,
                   unsigned char byte) {
  std::size_t i = at + 1;
  const bool isInverted = pattern[i] == '!' || pattern[i] == '^';
  if (isInverted) ++i;
  bool isMember = false;
  for (; i < close; ++i) {
    const auto low = static_cast<unsigned char>(pattern[i]);
    auto high = low;
    if (i + 2 < close && pattern[i + 1] == '-') high = static_cast<unsigned char>(pattern[i += 2]);
    if (byte >= low && byte <= high) isMember = true;
  }
  return {isMember != isInverted, close + 1};
}

Element element(std::string_view pattern, std::size_t at, char byte) {
  if (pattern[at] == '?') return {true, at + 1};
  if (pattern[at] == '[') {
    const std::size_t first = at + 1 < pattern.size() && (pattern[at + 1] == '!') ? at + 3 : at + 2;
    const std::size_t close = pattern.find(']', first);  // a bracket in the first place is a member
    if (close != std::string_view::npos)
      return setElement(pattern, at, close, static_cast<unsigned char>(byte));
  }
  return {pattern[at] == byte, at + 1};
}

}  // namespace

bool fitsPattern(std::string_view name, std::string_view pattern) {
  constexpr std::size_t kNone = std::string_view::npos;
  std::size_t at = 0, behindStar = kNone, retry = 0;
  for (std::size_t i = 0; i < name.size();) {
    if (at < pattern.size() && pattern[at] == '*') {
      behindStar = ++at, retry = i;
      continue;
    }
    const Element next = at < pattern.size() ? element(pattern, at, name[i]) : Element{false, 0};
    if (next.fits) {
      at = next.next, ++i;
    } else if (behindStar != kNone) {
      at = behindStar, i = ++retry;  // the star takes one byte more
    } else {
      return false;
    }
  }
  while (at < pattern.size() && pattern[at] == '*') ++at;
  return at == pattern.size();
}

void MimeGlobs::addGlob(Glob glob) {
  if (!glob.mindsCase) glob.pattern = lowercase(glob.pattern);
  const std::string& pattern = glob.pattern;
  if (pattern.find_first_of(kWildcards) == std::string::npos)
    _names[pattern].push_back(std::move(glob));
  else if (pattern.starts_with("*.") && pattern.find_first_of(kWildcards, 1) == std::string::npos)
    _endings[pattern.substr(1)].push_back(std::move(glob));
  else if (_patterns.size() < kMostPatterns)
    _patterns.push_back(std::move(glob));
}

void MimeGlobs::addLine(std::string_view line, std::vector<std::string>& closing) {
  const std::string_view weight = nextField(line), type = nextField(line), glob = nextField(line);
  const std::string_view flags = line;
  int number = 0;
  const auto [end, failure] = std::from_chars(weight.data(), weight.data() + weight.size(), number);
  if (failure != std::errc() || end != weight.data() + weight.size() || type.empty()) return;
  if (glob.empty() || glob.size() > kLongestName || _closed.contains(std::string(type))) return;
  if (glob == "__NOGLOBS__")
    closing.emplace_back(type);
  else
    addGlob({number, flags == "cs", std::string(glob), std::string(type)});
}

void MimeGlobs::add(std::string_view text) {
  std::vector<std::string> closing;
  forEachLine(text, [&](std::string_view line) { addLine(line, closing); });
  _closed.insert(closing.begin(), closing.end());
}

std::string_view MimeGlobs::typeOfName(std::string_view name) const {
  if (name.size() > kLongestName) return {};
  const std::string lower = lowercase(name);
  const Glob* best = nullptr;
  auto consider = [&best](const Glob& glob) {
    auto rank = [](const Glob& g) { return std::tuple(g.weight, g.pattern.size(), g.mindsCase); };
    if (!best || rank(glob) > rank(*best)) best = &glob;
  };
  auto considerAll = [&consider](const Index& index, const std::string& key, bool mindsCase) {
    if (auto found = index.find(key); found != index.end())
      for (const Glob& glob : found->second)
        if (glob.mindsCase == mindsCase) consider(glob);
  };
  for (const bool mindsCase : {true, false}) {
    const std::string text = mindsCase ? std::string(name) : lower;
    considerAll(_names, text, mindsCase);
    for (std::size_t dot = text.find('.', 1); dot != std::string::npos;
         dot = text.find('.', dot + 1))
      considerAll(_endings, text.substr(dot), mindsCase);
  }
  for (const Glob& glob : _patterns)
    if (fitsPattern(glob.mindsCase ? name : std::string_view(lower), glob.pattern)) consider(glob);
  return best ? std::string_view(best->type) : std::string_view();
}

}  // namespace kbx
