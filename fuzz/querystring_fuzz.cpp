// Query strings: read, built on an old and a new system, and read again. Even inputs are UTF-8, odd
// ones are units.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "NSString+KBXQueryStrings.h"
#include "platform/objects/NSData.h"
#include "platform/system/OperatingSystem.h"
#include "platform/text/StringEncoding.h"

namespace kbx {
namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

/// A system that has what came with 10.10, or has not.
class AnySystem final : public OperatingSystem {
 public:
  explicit AnySystem(bool isNew) : _isNew(isNew) {}
  double foundationVersionNumber() override { return 0; }
  NSOperatingSystemVersion version() override { return {}; }
  bool isAvailable(NSOperatingSystemVersion) override { return _isNew; }
  std::optional<std::int32_t> gestalt(OSType) override { return std::nullopt; }

 private:
  const bool _isNew;
};

Ref<NSString> textOf(std::string_view bytes) {
  if (bytes.size() % 2 == 0) return NSString::stringWithLossyUTF8(bytes);
  bytes.remove_prefix(1);
  return NSString::initWithData(NSData::dataWithBytes(bytes), NSUTF16LittleEndianStringEncoding);
}

bool hasUTF8(NSDictionary* dictionary) {
  for (const auto& [name, value] : *dictionary)
    if (!cast<NSString>(name)->UTF8String() || !cast<NSString>(value)->UTF8String()) return false;
  return true;
}

void buildAndRead(NSDictionary* dictionary, bool isNew) {
  AnySystem system(isNew);
  ScopedService<OperatingSystem> installed(system);
  const Ref<NSString> query = kbxQueryStringWithDictionary(dictionary);
  if (!hasUTF8(dictionary)) {
    require((query == nullptr) == isNew);
    return;
  }
  require(query && query->isASCII());
  const std::string bytes = *query->UTF8String();
  require(bytes.find_first_of(isNew ? " #;+" : " #") == std::string::npos);
  require(isEqual(kbxQueryStringDictionary(query), dictionary));
}

}  // namespace
}  // namespace kbx

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace kbx;
  const Ref<NSString> text = textOf({reinterpret_cast<const char*>(bytes), size});
  const Ref<NSMutableDictionary> dictionary = kbxQueryStringDictionary(text);
  buildAndRead(dictionary, true);
  buildAndRead(dictionary, false);
  return 0;
}
