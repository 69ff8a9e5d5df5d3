// XMLPropertyListTree: builds a property list from the elements of its XML form.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/propertylists/PropertyListReading.h"

namespace kbx {

/// Takes elements and text in the order of the document, well nested. Each step answers what is
/// wrong with it, or nothing; after a fault there are no more steps.
class XMLPropertyListTree {
 public:
  using Fault = std::optional<std::string>;

  explicit XMLPropertyListTree(bool isMutable) : _isMutable(isMutable) {}

  Fault start(std::string_view name);
  Fault end();
  Fault text(std::string_view text);
  /// Makes room for so many bytes of text, of which the open element may turn out to have fewer.
  void expectText(std::size_t length);
  /// The outermost value; absent while there is none.
  Ref<NSObject> root() const { return _root; }

  enum class Element : std::uint8_t {
    Plist,
    Dictionary,
    Array,
    Key,
    String,
    Integer,
    Real,
    True,
    False,
    Date,
    Data,
  };

 private:
  struct Container {
    NSArray::Elements elements;        // of an array
    Ref<NSMutableDictionary> entries;  // of a dictionary; absent for an array
    Ref<NSString> key;                 // that waits for its value
  };

  bool isInLeaf() const;
  Fault startPlist();
  Fault startContainer(Element element);
  Fault faultOfPlace(Element element) const;
  Fault endContainer();
  Fault endLeaf(Element element);
  Fault endKey();
  Fault store(Ref<NSObject> value);

  const bool _isMutable;
  std::vector<Element> _open;
  std::vector<Container> _containers;
  std::string _text;  // of the open leaf
  Ref<NSObject> _root;
};

}  // namespace kbx
