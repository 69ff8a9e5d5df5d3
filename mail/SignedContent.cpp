#include "mail/SignedContent.h"

#include <cstdint>
#include <string_view>

namespace kbx {
namespace {

constexpr unsigned char kOctetString = 0x04, kObject = 0x06, kSequence = 0x30, kFirst = 0xA0;
constexpr std::string_view kSignedData("\x2A\x86\x48\x86\xF7\x0D\x01\x07\x02", 9);
constexpr std::string_view kEnvelopedData("\x2A\x86\x48\x86\xF7\x0D\x01\x07\x03", 9);

/// The head of an element in the basic encoding rules.
struct Head {
  unsigned char tag = 0;
  bool isIndefinite = false;  // ends with two zero bytes
  std::size_t length = 0;     // of the contents
};

/// Walks elements from the first to the last, into those that it is told to enter.
class Elements {
 public:
  explicit Elements(std::string_view bytes) : _bytes(bytes) {}

  /// Reads a head; false at the end and where the bytes are none.
  bool next(Head* head) {
    if (_bytes.size() < 2) return false;
    head->tag = byte(0);
    if ((head->tag & 0x1F) == 0x1F) return false;  // longer tags do not occur here
    std::size_t used = 2;
    std::size_t length = byte(1);
    head->isIndefinite = length == 0x80;
    if (length > 0x80) {
      const std::size_t count = length & 0x7F;
      if (count > 8 || _bytes.size() < 2 + count) return false;
      length = 0;
      for (std::size_t i = 0; i < count; ++i) length = length << 8 | byte(2 + i);
      used += count;
    }
    _bytes.remove_prefix(used);
    head->length = head->isIndefinite ? 0 : std::min(length, _bytes.size());
    return true;
  }
  /// Goes into the next element, which must have the tag.
  bool enter(unsigned char tag) {
    Head head;
    return next(&head) && head.tag == tag;
  }
  /// The contents of a simple element.
  std::string_view take(const Head& head) {
    const std::string_view contents = _bytes.substr(0, head.length);
    _bytes.remove_prefix(contents.size());
    return contents;
  }
  /// Goes past the next element; only those of a known length are met here.
  bool skip() {
    Head head;
    if (!next(&head) || head.isIndefinite) return false;
    take(head);
    return true;
  }

 private:
  unsigned char byte(std::size_t index) const { return static_cast<unsigned char>(_bytes[index]); }

  std::string_view _bytes;
};

/// The bytes of an octet string, joined where it is made of several.
std::string octets(Elements elements) {
  std::string result;
  Head head;
  int depth = 0;
  while (elements.next(&head)) {
    const unsigned kind = head.tag & 0x3F;
    if (head.tag == 0 && head.length == 0) {
      if (--depth <= 0) break;
    } else if (kind == (kOctetString | 0x20)) {
      ++depth;  // its pieces come next
    } else if (head.tag == kOctetString) {
      result += elements.take(head);
      if (depth == 0) break;
    } else {
      break;
    }
  }
  return result;
}

}  // namespace

std::string signedContent(std::string bytes, bool* isEncrypted) {
  Elements elements(bytes);
  Head type;
  if (!elements.enter(kSequence) || !elements.next(&type) || type.tag != kObject) return {};
  const std::string_view identifier = elements.take(type);
  *isEncrypted |= identifier == kEnvelopedData;
  if (identifier != kSignedData || !elements.enter(kFirst) || !elements.enter(kSequence)) return {};
  // The version and the digest algorithms come before the content.
  if (!elements.skip() || !elements.skip() || !elements.enter(kSequence)) return {};
  if (!elements.skip() || !elements.enter(kFirst)) return {};
  return octets(elements);
}

}  // namespace kbx
