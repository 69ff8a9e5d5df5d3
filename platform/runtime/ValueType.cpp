#include "platform/runtime/ValueType.h"

#include <ffi.h>

#include <algorithm>
#include <charconv>

namespace kbx {
namespace {

using Kind = ValueType::Kind;

constexpr unsigned kDeepest = 16;
constexpr std::size_t kMostMembers = 1024;

struct Simple {
  char letter;
  Kind kind;
  ffi_type* form;
};

const Simple kSimple[] = {
    {'v', Kind::Void, &ffi_type_void},       {'c', Kind::Integer, &ffi_type_sint8},
    {'C', Kind::Integer, &ffi_type_uint8},   {'B', Kind::Integer, &ffi_type_uint8},
    {'s', Kind::Integer, &ffi_type_sint16},  {'S', Kind::Integer, &ffi_type_uint16},
    {'i', Kind::Integer, &ffi_type_sint32},  {'I', Kind::Integer, &ffi_type_uint32},
    {'l', Kind::Integer, &ffi_type_sint32},  {'L', Kind::Integer, &ffi_type_uint32},
    {'q', Kind::Integer, &ffi_type_sint64},  {'Q', Kind::Integer, &ffi_type_uint64},
    {'f', Kind::Real, &ffi_type_float},      {'d', Kind::Real, &ffi_type_double},
    {'D', Kind::Real, &ffi_type_longdouble}, {'@', Kind::Object, &ffi_type_pointer},
    {'#', Kind::Pointer, &ffi_type_pointer}, {':', Kind::Pointer, &ffi_type_pointer},
    {'*', Kind::Pointer, &ffi_type_pointer},
};

/// What libffi is told of a structure: the type and its members, which end with an absent one.
struct StructureForm {
  ffi_type type{};
  std::vector<ffi_type*> members;
};

/// Reads types from the front of the encodings. After an absent result nothing else is asked.
class Parser {
 public:
  explicit Parser(std::string_view text) : _text(text) {}

  std::optional<ValueType> take();
  std::string_view rest() const { return _text.substr(_at); }

 private:
  bool has(char letter) const { return _at < _text.size() && _text[_at] == letter; }
  bool skip(char letter);
  std::optional<std::size_t> takeCount();
  std::optional<ValueType> takeKind();
  std::optional<ValueType> takeSimple();
  std::optional<ValueType> takePointer();
  std::optional<ValueType> takeArray();
  std::optional<ValueType> takeStructure();
  bool takeMembers(StructureForm& form, ValueType& structure);
  bool skipPointee();

  const std::string_view _text;
  std::size_t _at = 0;
  unsigned _depth = 0;
};

bool Parser::skip(char letter) {
  if (!has(letter)) return false;
  ++_at;
  return true;
}

/// The digits at this place, which may be none: 0. Absent when the number is too large.
std::optional<std::size_t> Parser::takeCount() {
  std::size_t count = 0;
  const char* end = _text.data() + _text.size();
  const auto [next, failure] = std::from_chars(_text.data() + _at, end, count);
  if (failure == std::errc::result_out_of_range) return std::nullopt;
  _at = static_cast<std::size_t>(next - _text.data());
  return count;
}

std::optional<ValueType> Parser::takeSimple() {
  const auto* found = std::ranges::find(kSimple, _text[_at], &Simple::letter);
  if (found == std::end(kSimple)) return std::nullopt;
  ++_at;
  const bool isVoid = found->kind == Kind::Void;
  // The name of a class behind an object, or the mark of a block, changes nothing.
  if (found->kind == Kind::Object && !skip('?') && skip('"')) {
    while (_at < _text.size() && !has('"')) ++_at;
    if (!skip('"')) return std::nullopt;
  }
  return ValueType{found->kind,
                   {},
                   isVoid ? 0 : found->form->size,
                   std::max<std::size_t>(found->form->alignment, 1),
                   found->form};
}

/// What is pointed to may be of any kind, so only the brackets count.
bool Parser::skipPointee() {
  std::size_t open = 0;
  do {
    while (skip('^') || skip('r')) continue;
    if (_at == _text.size()) return false;
    const char letter = _text[_at++];
    if (letter == '{' || letter == '(' || letter == '[') ++open;
    if ((letter == '}' || letter == ')' || letter == ']') && open-- == 0) return false;
  } while (open > 0);
  return true;
}

std::optional<ValueType> Parser::takePointer() {
  if (!skip('^') || !skipPointee()) return std::nullopt;
  return ValueType{Kind::Pointer, {}, sizeof(void*), alignof(void*), &ffi_type_pointer};
}

std::optional<ValueType> Parser::takeArray() {
  if (!skip('[')) return std::nullopt;
  const auto count = takeCount();
  auto element = count ? take() : std::nullopt;
  if (!element || element->size == 0 || !skip(']')) return std::nullopt;
  if (*count > kMostMembers * kMostMembers / element->size) return std::nullopt;
  // Only text tells its own size.
  if (*count == 0 && element->encoding != "c") return std::nullopt;
  return ValueType{Kind::Array,
                   {},
                   *count * element->size,
                   element->alignment,
                   &ffi_type_pointer,
                   std::move(element->owned)};
}

bool Parser::takeMembers(StructureForm& form, ValueType& structure) {
  while (!skip('}')) {
    std::size_t count = 1;
    const bool isArray = skip('[');
    if (isArray) count = takeCount().value_or(0);
    auto member = take();
    if (!member || member->kind == Kind::Void || member->kind == Kind::Array) return false;
    if (isArray && !skip(']')) return false;
    if (count == 0 || form.members.size() + count > kMostMembers) return false;
    form.members.insert(form.members.end(), count, member->form);
    std::ranges::move(member->owned, std::back_inserter(structure.owned));
  }
  return !form.members.empty();
}

std::optional<ValueType> Parser::takeStructure() {
  const std::size_t equals = _text.find('=', _at);
  if (equals == std::string_view::npos) return std::nullopt;
  const auto name = _text.substr(_at + 1, equals - _at - 1);
  if (name.find_first_of("{}[]()") != std::string_view::npos) return std::nullopt;
  _at = equals + 1;
  auto form = std::make_shared<StructureForm>();
  ValueType structure{Kind::Structure, {}, 0, 1, &form->type};
  if (!takeMembers(*form, structure)) return std::nullopt;
  form->members.push_back(nullptr);
  form->type.type = FFI_TYPE_STRUCT;
  form->type.elements = form->members.data();
  // Fills in the size and the alignment.
  if (ffi_get_struct_offsets(FFI_DEFAULT_ABI, &form->type, nullptr) != FFI_OK) return std::nullopt;
  structure.size = form->type.size;
  structure.alignment = form->type.alignment;
  structure.owned.push_back(std::move(form));
  return structure;
}

std::optional<ValueType> Parser::takeKind() {
  if (has('^')) return takePointer();
  if (has('[')) return takeArray();
  if (has('{')) return takeStructure();
  return takeSimple();
}

std::optional<ValueType> Parser::take() {
  constexpr std::string_view kQualifiers = "rnNoORV";
  const std::size_t start = _at;
  while (_at < _text.size() && kQualifiers.find(_text[_at]) != std::string_view::npos) ++_at;
  if (_at == _text.size() || _depth == kDeepest) return std::nullopt;
  ++_depth;
  auto type = takeKind();
  --_depth;
  if (type) type->encoding = _text.substr(start, _at - start);
  return type;
}

}  // namespace

std::optional<ValueType> takeValueType(std::string_view& encodings) {
  Parser parser(encodings);
  auto type = parser.take();
  if (!type) return std::nullopt;
  encodings = parser.rest();
  encodings.remove_prefix(std::min(encodings.find_first_not_of("0123456789"), encodings.size()));
  return type;
}

}  // namespace kbx
