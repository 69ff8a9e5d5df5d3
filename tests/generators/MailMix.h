// MailMix: a mailbox of any size as people have them, the same for the same seed on every machine.
//
// Half of the messages are in English, the others in 17 languages and ten scripts, in UTF-8 and in
// older charsets. They are plain, in two forms, HTML alone, with attachments, forwarded and signed;
// some are broken in the usual ways. They belong to threads and lists, come from some people often
// and from most seldom, and spread over twelve years.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace kbx {

/// Safe from any thread.
class MailMix {
 public:
  /// A mailbox of so many messages. A smaller one of the same seed is no part of a larger one: its
  /// messages are spread over the same years.
  MailMix(std::uint64_t seed, std::size_t count) : _seed(seed), _count(count) {}

  std::size_t count() const { return _count; }
  /// The bytes of one message; on average about 32 KB.
  std::string message(std::size_t index) const;
  /// Its file below the folder of all: "012/012345.eml", a thousand in each folder.
  static std::string fileName(std::size_t index);
  /// A word that stands in the text of this message and in no other.
  static std::string mark(std::size_t index);

 private:
  std::uint64_t _seed;
  std::size_t _count;
};

}  // namespace kbx
