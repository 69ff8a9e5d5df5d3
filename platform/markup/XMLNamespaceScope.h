// XMLNamespaceScope: which prefix stands for which namespace at a place in a document.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/markup/XMLTree.h"
#include "platform/objects/SeededHash.h"

namespace kbx {

/// Prefixes and their namespaces, found by hash; what an element declares ends with it.
class XMLNamespaceScope {
 public:
  XMLNamespaceScope() { bind("xml", kXMLNamespace); }

  /// An empty prefix stands for the default namespace.
  void bind(std::string_view prefix, std::string_view uri) {
    if (prefix.empty()) {
      _bindings.push_back({prefix, _default, kNone});
      _default = uri;
      return;
    }
    const auto [place, isNew] = _current.try_emplace(prefix, kNone);
    _bindings.push_back({prefix, uri, place->second});
    place->second = static_cast<std::uint32_t>(_bindings.size() - 1);
  }

  /// The namespace of a prefix; absent when it is not declared. The empty prefix always has one,
  /// which may be the empty one.
  std::optional<std::string_view> namespaceOf(std::string_view prefix) const {
    if (prefix.empty()) return _default;
    const auto found = _current.find(prefix);
    if (found == _current.end() || found->second == kNone) return std::nullopt;
    return _bindings[found->second].uri;
  }

  using Mark = std::uint32_t;
  Mark mark() const { return static_cast<Mark>(_bindings.size()); }
  /// Forgets what was bound since.
  void backTo(Mark mark) {
    for (; _bindings.size() > mark; _bindings.pop_back()) {
      const Binding& last = _bindings.back();
      if (last.prefix.empty())
        _default = last.uri;
      else
        _current[last.prefix] = last.before;
    }
  }

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  struct Binding {
    std::string_view prefix;
    std::string_view uri;  // of the default namespace: the one before
    std::uint32_t before;
  };

  std::string_view _default;
  std::vector<Binding> _bindings;
  std::unordered_map<std::string_view, std::uint32_t, SeededHash> _current;
};

}  // namespace kbx
