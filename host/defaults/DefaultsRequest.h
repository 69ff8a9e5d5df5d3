// DefaultsRequest: what the words behind `ferncase defaults` ask for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/objects/NSString.h"

namespace kbx {

struct DefaultsRequest {
  enum class Action : std::uint8_t { Read, Write, Delete };

  Action action;
  Ref<NSString> domain;  // never absent
  Ref<NSString> key;     // absent: all of the domain
  Ref<NSObject> value;   // what is to be written
};

/// The request of the words read, write or delete, a domain, a key and a value.
///
/// domain  what an option names; absent when the words may begin with it. Then a word before
///         another key, or alone, is a domain when isDomainName() says so or a key follows.
///
/// Raises UsageError.
DefaultsRequest defaultsRequest(std::vector<std::string> words,
                                const std::optional<std::string>& domain);

/// Whether a word that stands alone means a domain: one with a dot in it, the program's own, the
/// global one, and -g. Any other is a key of the program's own domain.
bool isDomainName(const std::string& word);

}  // namespace kbx
