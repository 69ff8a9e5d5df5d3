// UnitSearch: finds a text in a text, unit by unit.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/objects/NSString.h"

namespace kbx {

/// Finds the places of one text in another, in time proportional to their lengths, whatever the
/// texts are. Borrows both while it lives; belongs to one thread.
class UnitSearch {
 public:
  /// wanted  not empty
  UnitSearch(const NSString& text, const NSString& wanted);
  UnitSearch(const UnitSearch&) = delete;
  UnitSearch& operator=(const UnitSearch&) = delete;

  /// The first place at or behind `from`, or the text's length when there is none.
  std::size_t next(std::size_t from) const;

 private:
  std::size_t nextInBytes(std::size_t from) const;
  std::size_t nextInUnits(std::size_t from) const;
  std::size_t nextByBorders(const char16_t* text, std::size_t length, std::size_t from) const;

  const NSString& _text;
  const NSString& _wanted;
  std::u16string _units;              // of what is wanted, when the text is kept in units
  std::vector<std::size_t> _borders;  // of each of its starts, when it is long
};

}  // namespace kbx
