#include "platform/files/NSURLComponents.h"

#include <string>

#include "platform/objects/NSClass.h"
#include "platform/text/PercentEscapes.h"
#include "platform/text/StringBuilder.h"

namespace kbx {

KBX_CLASS(NSURLQueryItem)
KBX_CLASS(NSURLComponents)

namespace {

Ref<NSString> escaped(NSString* part) {
  static const std::string allowed = [] {
    std::string characters(kURLQueryAllowedCharacters);
    std::erase_if(characters, [](char c) { return c == '&' || c == '='; });
    return characters;
  }();
  return stringByAddingPercentEncoding(part, allowed);
}

bool isEqualOrBothAbsent(NSString* a, NSString* b) { return isSame(a, b) || isEqual(a, b); }

}  // namespace

Ref<NSURLQueryItem> NSURLQueryItem::queryItemWithName(NSString* name, NSString* value) {
  return Ref<NSURLQueryItem>::adopt(new NSURLQueryItem(name, value));
}

bool NSURLQueryItem::isEqual(NSObject* other) const {
  auto* item = cast<NSURLQueryItem>(other);
  return item && kbx::isEqual(_name, item->_name) && isEqualOrBothAbsent(_value, item->_value);
}

std::size_t NSURLQueryItem::hash() const { return _name->hash(); }

Ref<NSURLComponents> NSURLComponents::components() {
  return Ref<NSURLComponents>::adopt(new NSURLComponents);
}

Ref<NSString> NSURLComponents::percentEncodedQuery() const {
  if (!_queryItems) return nullptr;
  StringBuilder query;
  bool isFirst = true;
  for (const Ref<NSObject>& element : *_queryItems) {
    auto* item = cast<NSURLQueryItem>(element);
    if (!item) continue;
    const Ref<NSString> name = escaped(item->name()), value = escaped(item->value());
    if (!name || (item->value() && !value)) return nullptr;
    if (!isFirst) query.append("&"_ns);
    query.append(name);
    if (value) query.append("="_ns).append(value);
    isFirst = false;
  }
  return query.take();
}

}  // namespace kbx
