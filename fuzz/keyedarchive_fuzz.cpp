// Keyed archives of strangers: what is read can be archived, and then stays the same.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "platform/archives/NSKeyedUnarchiver.h"
#include "platform/objects/NSError.h"

// An archive may hold what holds itself, which never dies. Visible, because g++ keeps the sanitizer
// that asks in a library of its own.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
  return "detect_leaks=0";
}

namespace kbx {
namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

Ref<NSObject> read(NSData* bytes, Ref<NSError>* error) {
  auto object = NSKeyedUnarchiver::unarchiveTopLevelObjectWithData(bytes, error);
  require(!*error || !object);
  require(!*error || (*error)->code() == NSCoderReadCorruptError ||
          (*error)->code() == NSCoderValueNotFoundError);
  return object;
}

/// Reads what was archived, which must be possible, and archives it again.
Ref<NSData> again(NSData* bytes) {
  Ref<NSError> error;
  auto object = read(bytes, &error);
  require(!error);
  return NSKeyedArchiver::archivedDataWithRootObject(object);
}

}  // namespace
}  // namespace kbx

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  using namespace kbx;
  Ref<NSError> error;
  auto object = read(NSData::dataWithBytes(bytes, size), &error);
  if (error) return 0;
  auto archived = NSKeyedArchiver::archivedDataWithRootObject(object);
  require(isEqual(again(archived), archived));
  return 0;
}
