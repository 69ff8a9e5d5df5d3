#include "NSString+KBXPercentEscapes.h"

#include "StringCopy.h"
#include "platform/text/PercentEscapes.h"

namespace kbx {

Ref<NSString> kbxDecodePercentEscapes(NSString* string) {
  return kbxDecodePercentEscapesKeepingEscaped(string, ""_ns);
}

Ref<NSString> kbxDecodePercentEscapesKeepingEscaped(NSString* string, NSString* characters) {
  if (string && !characters) return newCopy(string);
  return stringByReplacingPercentEscapes(string, characters);
}

Ref<NSString> kbxEncodeForQueryString(NSString* string) {
  return stringByAddingPercentEscapes(string, nullptr, "&="_ns);
}

Ref<NSString> kbxEncodeURLKeepingUnescaped(NSString* string, NSString* characters) {
  return stringByAddingPercentEscapes(string, characters, nullptr);
}

}  // namespace kbx
