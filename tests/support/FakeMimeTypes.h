// FakeMimeTypes: MIME types that a test makes up.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "platform/desktop/MimeTypes.h"

namespace kbx {

/// Installed while it lives; knows no type unless the test says so.
class FakeMimeTypes final : public MimeTypes {
 public:
  explicit FakeMimeTypes(std::map<std::string, std::string, std::less<>> types = {})
      : _types(std::move(types)) {}

  std::string typeOfName(std::string_view name) override {
    auto type = _types.find(name);
    return type == _types.end() ? "" : type->second;
  }

 private:
  std::map<std::string, std::string, std::less<>> _types;  // by name
  ScopedService<MimeTypes> _installed{*this};
};

}  // namespace kbx
