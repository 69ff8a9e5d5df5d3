#include "platform/messages/EMLXFile.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "platform/files/FileErrors.h"
#include "platform/files/FileSystem.h"
#include "platform/propertylists/NSPropertyListSerialization.h"

namespace kbx {
namespace {

/// What a count line says, and how long the line is; 0 long when this is none.
struct CountLine {
  std::uint64_t count = 0;
  std::size_t length = 0;
};

CountLine countLineOf(std::string_view bytes) {
  CountLine line;
  const char* const end = bytes.data() + bytes.size();
  const auto [digits, failure] = std::from_chars(bytes.data(), end, line.count);
  if (failure == std::errc::invalid_argument) return {};
  if (failure == std::errc::result_out_of_range) line.count = UINT64_MAX;
  const char* const last =
      std::find_if(digits, end, [](char c) { return c != ' ' && c != '\t' && c != '\r'; });
  if (last == end || *last != '\n') return {};
  line.length = static_cast<std::size_t>(last + 1 - bytes.data());
  return line;
}

Ref<NSDictionary> dictionaryOf(std::string_view bytes) {
  const std::size_t start = bytes.find_first_not_of(" \t\r\n");
  if (start == std::string_view::npos) return NSDictionary::dictionary();
  Ref<NSObject> list = NSPropertyListSerialization::propertyListWithData(
      NSData::dataWithBytes(bytes.substr(start)), NSPropertyListImmutable, nullptr, nullptr);
  auto* dictionary = cast<NSDictionary>(list);
  return dictionary ? Ref<NSDictionary>(dictionary) : NSDictionary::dictionary();
}

}  // namespace

EMLXFile::EMLXFile(NSURL* url, Ref<NSError>* error)
    : _url(url), _file(url, error), _buffer(std::make_unique_for_overwrite<char[]>(kPiece)) {}

void EMLXFile::fill() {
  if (_failure) return;
  const std::int64_t count = FileSystem::current().read(_file.descriptor(), _buffer.get(), kPiece);
  if (count < 0) _failure = fileError(_url, FileAction::Reading, static_cast<int>(-count));
  _bytes = {_buffer.get(), count > 0 ? static_cast<std::size_t>(count) : 0};
}

void EMLXFile::readCountLine() {
  _hasBegun = true;
  fill();
  const CountLine line = countLineOf(_bytes);
  if (line.length == 0) return;
  _left = line.count;
  _bytes.remove_prefix(line.length);
}

std::string_view EMLXFile::nextPiece() {
  if (!_hasBegun) readCountLine();
  if (_bytes.empty() && _left > 0) fill();
  const auto length = static_cast<std::size_t>(std::min<std::uint64_t>(_bytes.size(), _left));
  const std::string_view piece = _bytes.substr(0, length);
  _bytes.remove_prefix(length);
  _left -= length;
  _messageSize += length;
  return piece;
}

Ref<NSDictionary> EMLXFile::properties() {
  while (!nextPiece().empty()) {
  }
  std::string list;
  if (_bytes.empty()) fill();
  for (; !_bytes.empty() && list.size() <= kLargestList; fill()) list += _bytes;
  return list.size() <= kLargestList ? dictionaryOf(list) : NSDictionary::dictionary();
}

}  // namespace kbx
