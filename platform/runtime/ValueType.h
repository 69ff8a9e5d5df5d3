// ValueType: how a value of one type encoding lies in memory and travels through a C call.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Export.h"

struct _ffi_type;  // libffi's

namespace kbx {

struct ValueType {
  enum class Kind { Void, Integer, Real, Pointer, Object, Array, Structure };

  Kind kind;
  std::string encoding;   // as it was written, without a frame offset behind it
  std::size_t size;       // bytes; 0 for void and for text whose size is not told, as in "[c]"
  std::size_t alignment;  // at least 1
  _ffi_type* form;        // what libffi is told; that of a pointer for an array
  std::vector<std::shared_ptr<void>> owned{};  // the forms of structures
};

/// Takes the first type from the encodings, with its qualifiers and a frame offset behind it.
///
/// c C s S i I l L q Q B are integers (l and L of 32 bits), f d D real numbers (D the widest),
/// v void, @ objects, # : * and ^ with any type pointers, [12c] arrays, {name=types} structures.
///
/// Absent, with nothing taken, for what is none of these: unions, bit fields, structures without
/// members or nested more than 16 deep.
KBX_PLATFORM std::optional<ValueType> takeValueType(std::string_view& encodings);

}  // namespace kbx
