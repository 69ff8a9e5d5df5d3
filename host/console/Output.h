// Output: bytes on their way out, gathered into large writes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kbx {

/// Collects bytes and delivers them when there are many or when flush() is called. The first
/// failure is kept, and what is written afterwards is dropped. Belongs to one thread at a time.
class Output {
 public:
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  virtual ~Output() = default;

  void write(std::string_view bytes) {
    if (bytes.size() > kCapacity - _waiting.size()) return writeMuch(bytes);
    _waiting.append(bytes);
  }
  void write(char byte) { write(std::string_view(&byte, 1)); }
  void writeBlanks(std::size_t count);

  /// Whether everything so far was delivered.
  bool flush();
  /// The error number (an `errno` value) of the write that failed; 0 while none did.
  int failure() const noexcept { return _failure; }

 protected:
  Output();
  /// Answers zero, or the negative error number.
  virtual int deliver(std::string_view bytes) = 0;

 private:
  static constexpr std::size_t kCapacity = 1 << 16;
  void writeMuch(std::string_view bytes);

  std::string _waiting;  // never more than kCapacity bytes
  int _failure = 0;
};

/// Writes to an open descriptor, which it does not close; delivers what is left when it ends.
class DescriptorOutput final : public Output {
 public:
  explicit DescriptorOutput(int descriptor) : _descriptor(descriptor) {}
  ~DescriptorOutput() override { flush(); }

 private:
  int deliver(std::string_view bytes) override;

  const int _descriptor;
};

/// Collects everything in memory.
class StringOutput final : public Output {
 public:
  /// All that was written so far.
  const std::string& text();

 private:
  int deliver(std::string_view bytes) override;

  std::string _text;
};

}  // namespace kbx
