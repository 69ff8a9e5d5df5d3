#include "platform/plugins/NSUUID.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/objects/NSClass.h"
#include "platform/system/UUID.h"

namespace kbx {

KBX_CLASS(NSUUID)

namespace {

/// The living objects by their bytes. It does not own them: a UUID leaves when it dies.
struct Table {
  std::mutex lock;
  std::map<NSUUID::Bytes, NSUUID*> living;
  std::map<NSUUID::Bytes, Ref<NSUUID>> constants;
};

Table& table() {
  static auto* const table = new Table;
  return *table;
}

std::string_view withoutBlanks(std::string_view text) {
  const auto isBlank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view withoutBraces(std::string_view text) {
  if (text.size() < 2 || text.front() != '{' || text.back() != '}') return text;
  return withoutBlanks(text.substr(1, text.size() - 2));
}

std::optional<unsigned> hexadecimalDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return std::nullopt;
}

/// The digits of a text with all four hyphens at their places, or with none.
std::optional<std::string> digitsOf(std::string_view text) {
  if (text.size() == 32) return std::string(text);
  if (text.size() != 36) return std::nullopt;
  std::string digits;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isHyphenPlace = i == 8 || i == 13 || i == 18 || i == 23;
    if (isHyphenPlace != (text[i] == '-')) return std::nullopt;
    if (!isHyphenPlace) digits += text[i];
  }
  return digits;
}

std::optional<NSUUID::Bytes> bytesOf(std::string_view text) {
  auto digits = digitsOf(withoutBraces(withoutBlanks(text)));
  if (!digits) return std::nullopt;
  NSUUID::Bytes bytes;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    auto high = hexadecimalDigit((*digits)[2 * i]);
    auto low = hexadecimalDigit((*digits)[2 * i + 1]);
    if (!high || !low) return std::nullopt;
    bytes[i] = static_cast<std::uint8_t>(*high << 4 | *low);
  }
  return bytes;
}

}  // namespace

NSUUID::~NSUUID() {
  std::lock_guard held(table().lock);
  auto found = table().living.find(_bytes);
  // Another thread may have asked for the same bytes after the last reference to this had gone.
  if (found != table().living.end() && found->second == this) table().living.erase(found);
}

Ref<NSUUID> NSUUID::UUID() { return UUIDWithBytes(randomUUID()); }

Ref<NSUUID> NSUUID::UUIDWithBytes(const Bytes& bytes) {
  std::lock_guard held(table().lock);
  NSUUID*& place = table().living[bytes];
  if (!place || !place->retainIfAlive()) place = new NSUUID(bytes);
  return Ref<NSUUID>::adopt(place);
}

Ref<NSUUID> NSUUID::UUIDWithString(NSString* text) {
  if (!text || !text->isASCII()) return nullptr;
  auto bytes = bytesOf(text->lossyUTF8());
  return bytes ? UUIDWithBytes(*bytes) : nullptr;
}

NSUUID* NSUUID::constant(const Bytes& bytes) {
  auto uuid = UUIDWithBytes(bytes);
  std::lock_guard held(table().lock);
  // When it is there already, it is this object: what is kept is living.
  return table().constants.try_emplace(bytes, uuid).first->second;
}

Ref<NSString> NSUUID::UUIDString() const {
  return NSString::stringByTakingUTF8(uuidString(_bytes));
}

}  // namespace kbx
