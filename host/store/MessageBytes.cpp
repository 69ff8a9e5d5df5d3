#include "host/store/MessageBytes.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "platform/text/UTF8.h"

namespace kbx {
namespace {

/// Calls `visit` for each field, in one order for writing and reading.
template <class Message, class Visit>
void eachField(Message& message, Visit&& visit) {
  for (auto* text : {&message.subject, &message.sender, &message.recipient, &message.cc,
                     &message.bcc, &message.body, &message.attachment, &message.list})
    visit(*text);
  visit(message.date);
  visit(message.received);
  for (auto* flag : {&message.isRead, &message.isFlagged, &message.isReplied, &message.isJunk,
                     &message.hasAttachment})
    visit(*flag);
  visit(message.messageId);
  visit(message.size);
  visit(message.attributes);
}

class Writer {
 public:
  explicit Writer(std::string& bytes) : _bytes(bytes) {}

  template <class Value>
  void operator()(const std::optional<Value>& value) {
    raw(value.has_value());
    if (value) (*this)(*value);
  }
  void operator()(const std::string& run) {
    raw(std::uint64_t{run.size()});
    _bytes.append(run);
  }
  template <class Number>
  requires std::is_arithmetic_v<Number>
  void operator()(Number number) { raw(number); }

 private:
  template <class Number>
  void raw(Number number) {
    _bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
  }

  std::string& _bytes;
};

class Reader {
 public:
  explicit Reader(std::string_view& bytes) : _bytes(bytes) {}

  template <class Value>
  void operator()(std::optional<Value>& value) {
    if (!flag()) return;
    (*this)(value.emplace());
    if constexpr (std::is_same_v<Value, std::string>) _isGood = _isGood && isUTF8(*value);
  }
  void operator()(std::string& run) {
    std::uint64_t size = 0;
    raw(size);
    _isGood = _isGood && size <= _bytes.size();
    if (!_isGood) return;
    run.assign(_bytes.substr(0, size));
    _bytes.remove_prefix(size);
  }
  void operator()(bool& value) { value = flag(); }
  template <class Number>
  requires std::is_arithmetic_v<Number>
  void operator()(Number& number) { raw(number); }

  bool isGood() const { return _isGood; }

 private:
  /// A byte that is neither 0 nor 1 is no flag.
  bool flag() {
    std::uint8_t byte = 0;
    raw(byte);
    _isGood = _isGood && byte <= 1;
    return _isGood && byte == 1;
  }
  template <class Number>
  void raw(Number& number) {
    _isGood = _isGood && _bytes.size() >= sizeof number;
    if (!_isGood) return;
    std::memcpy(&number, _bytes.data(), sizeof number);
    _bytes.remove_prefix(sizeof number);
  }

  std::string_view& _bytes;  // those that are left
  bool _isGood = true;
};

}  // namespace

void appendMessage(std::string& bytes, const StoredMessage& message) {
  eachField(message, Writer(bytes));
}

std::optional<StoredMessage> takeMessage(std::string_view& bytes) {
  Reader reader(bytes);
  StoredMessage message;
  eachField(message, reader);
  return reader.isGood() ? std::optional(std::move(message)) : std::nullopt;
}

}  // namespace kbx
