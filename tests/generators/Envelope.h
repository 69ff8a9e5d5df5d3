// Envelope: who writes to whom, when and about what.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/generators/Languages.h"

namespace kbx {

struct Person {
  std::string name;  // may be empty
  std::string address;
};

struct Envelope {
  const Language* language;
  Person sender;
  std::vector<Person> recipients;  // never empty
  std::vector<Person> copies;
  std::int64_t date;  // seconds since 1970
  int zone;           // hours east of Greenwich
  std::string subject;
  std::string messageID;                // without its brackets, as are those below
  std::vector<std::string> references;  // the oldest first; the last one is what is answered
  std::string list;                     // absent when empty
};

/// That of one message among many. Answers come after what they answer.
Envelope envelopeOf(std::uint64_t seed, std::size_t count, std::size_t index);

/// Any of the people who write, the first of them most often.
Person anyPerson(Random& random);

/// As in a Date field.
std::string dateText(std::int64_t date, int zone);

}  // namespace kbx
