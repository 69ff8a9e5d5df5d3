// BinaryPropertyList: what the reader and the writer of the binary form have in common.
//
// A file is the eight bytes of kBinaryHead, the objects, a table with the offset of each, and a
// trailer of 32 bytes: six that mean nothing, the bytes of an offset, the bytes of a reference, and
// as words of 64 bits the number of objects, the top object and the offset of the table. All
// numbers have their high byte first. An object begins with a marker: its kind in the high four
// bits, and in the low ones a length, or 15 where an integer object with the length follows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kbx {

inline constexpr std::string_view kBinaryHead = "bplist00";
inline constexpr std::size_t kBinaryTrailerLength = 32;

/// The high four bits of a marker.
enum class BinaryKind : std::uint8_t {
  Simple = 0x0,   // the low bits say which: 8 false, 9 true
  Integer = 0x1,  // of 1, 2, 4, 8 or 16 bytes: two to the power of the low bits
  Real = 0x2,     // of 4 or 8 bytes, likewise
  Date = 0x3,     // a real number of 8 bytes: seconds since the reference date
  Data = 0x4,
  ASCII = 0x5,
  UTF16 = 0x6,       // the length counts units
  Identifier = 0x8,  // of archives: a number in one byte more than the low bits say
  Array = 0xA,
  Dictionary = 0xD,  // the references of the keys, then those of the values
};

inline constexpr std::uint8_t kBinaryFalse = 0x08;
inline constexpr std::uint8_t kBinaryTrue = 0x09;
inline constexpr std::uint8_t kLongLength = 0xF;

}  // namespace kbx
