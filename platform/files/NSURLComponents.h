// NSURLComponents and NSURLQueryItem: the query of a URL, made of names and values.
#pragma once

#include "platform/objects/NSArray.h"
#include "platform/objects/NSString.h"

namespace kbx {

/// One "name=value" of a query. Immutable.
class KBX_PLATFORM NSURLQueryItem final : public NSObject {
  KBX_OBJECT(NSURLQueryItem, NSObject)
 public:
  /// name   absent is empty
  /// value  absent for a name that stands alone
  static Ref<NSURLQueryItem> queryItemWithName(NSString* name, NSString* value);

  NSString* name() const noexcept { return _name; }
  NSString* value() const noexcept { return _value; }

  bool isEqual(NSObject* other) const override;
  std::size_t hash() const override;

 private:
  NSURLQueryItem(NSString* name, NSString* value) : _name(name ? name : ""_ns), _value(value) {}

  const Ref<NSString> _name;
  const Ref<NSString> _value;
};

/// The parts of a URL, of which only the query is of use here. Belongs to one thread at a time.
class KBX_PLATFORM NSURLComponents final : public NSObject {
  KBX_OBJECT(NSURLComponents, NSObject)
 public:
  /// Components without a part. (init)
  static Ref<NSURLComponents> components();

  /// The items, all NSURLQueryItem, or absent.
  NSArray* queryItems() const noexcept { return _queryItems; }
  void setQueryItems(NSArray* items) { _queryItems = items ? items->copy() : nullptr; }

  /// The items joined by "&", with percent escapes for what a query may not hold and for "&" and
  /// "=" in names and values. (percentEncodedQuery)
  ///
  /// Absent without items, "" for no item, and absent when a name or value holds a lone surrogate.
  Ref<NSString> percentEncodedQuery() const;

 private:
  Ref<NSArray> _queryItems;
};

}  // namespace kbx
