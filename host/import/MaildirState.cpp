#include "host/import/MaildirState.h"

#include <filesystem>
#include <string_view>
#include <system_error>

#include "host/import/MessageNames.h"
#include "platform/objects/NSNumber.h"
#include "platform/text/ASCII.h"

namespace kbx {
namespace {

/// The letters behind a message's name; empty when there are none.
std::string_view flagsIn(std::string_view name) {
  constexpr std::string_view kMark = ":2,";
  const std::size_t mark = name.rfind(kMark);
  return mark == std::string_view::npos ? std::string_view() : name.substr(mark + kMark.size());
}

}  // namespace

Ref<NSDictionary> maildirState(const std::string& path) {
  std::error_code unknown;
  const auto file = std::filesystem::absolute(path, unknown).lexically_normal();
  const std::string name = file.filename().string(), folder = file.parent_path().string();
  const bool saysItself = endsIgnoringASCIICase(name, ".emlx");
  if (name.empty() || name.starts_with('.') || saysItself || !isMaildirFolder(folder))
    return nullptr;
  const bool isNew = folder.ends_with("/new");
  const std::string_view flags = flagsIn(name);
  const auto has = [&](char flag) {
    return NSNumber::numberWithBool(flags.find(flag) != std::string_view::npos);
  };
  return NSDictionary::dictionaryWithPairs(
      {{"com_apple_mail_read"_ns, isNew ? NSNumber::numberWithBool(false) : has('S')},
       {"com_apple_mail_flagged"_ns, has('F')},
       {"com_apple_mail_repliedTo"_ns, has('R')}});
}

}  // namespace kbx
